#include "store/SqliteConnection.h"

#include "platform/RuntimeError.h"

#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

#include <vector>

namespace KAL_AUTO_Node {

namespace {

// Another program's write takes milliseconds; only a lock that lasts is worth reporting.
constexpr int LockWaitMilliseconds = 1000;

// Beyond this the log is worth carrying over into the file, 64 MiB with the usual pages.
constexpr int LogPagesToKeep = 16384;

// Runs one use of the engine; its error becomes the component's.
template <class Use>
decltype(auto) Engine(Use&& use) {
    try {
        return use();
    } catch (const SQLite::Exception& error) {
        throw RuntimeError(ErrorNumber::StoreFailure, error.what(), "SQLite");
    }
}

// Over the engine's own interface: rows are read value by value, and the wrapper around it makes an object
// that is shared, and counted, for each.
class SqliteStatement : public Statement {
  public:
    SqliteStatement(sqlite3* database, const std::string& sql) : database_(database) {
        sqlite3_stmt* statement = nullptr;
        Require(sqlite3_prepare_v2(database, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr));
        statement_.reset(statement);
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            columns_.emplace_back(sqlite3_column_name(statement, column));
        }
    }

    [[nodiscard]] std::size_t ParameterCount() const override {
        return static_cast<std::size_t>(sqlite3_bind_parameter_count(statement_.get()));
    }

    [[nodiscard]] std::span<const std::string> Columns() const override { return columns_; }

    void Run(std::span<const std::string> parameters) override {
        int position = 0;
        for (const std::string& parameter : parameters) {
            Require(sqlite3_bind_text(statement_.get(), ++position, parameter.data(),
                                      static_cast<int>(parameter.size()), SQLITE_STATIC));
        }
        MoveNext();
    }

    [[nodiscard]] bool AtEnd() const override { return !onRow_; }

    void MoveNext() override {
        const int result = sqlite3_step(statement_.get());
        onRow_ = result == SQLITE_ROW;
        if (!onRow_ && result != SQLITE_DONE) {
            Require(result);
        }
    }

    [[nodiscard]] std::optional<std::string_view> Field(std::size_t column) const override {
        const auto position = static_cast<int>(column);
        const void* text = sqlite3_column_text(statement_.get(), position);
        if (text == nullptr) {
            return std::nullopt;
        }
        return std::string_view(static_cast<const char*>(text),
                                static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), position)));
    }

    [[nodiscard]] std::int64_t RowsWritten() const override { return sqlite3_changes64(database_); }

    void Close() noexcept override { sqlite3_reset(statement_.get()); }

  private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
    };

    void Require(int result) const {
        if (result != SQLITE_OK) {
            throw RuntimeError(ErrorNumber::StoreFailure, sqlite3_errmsg(database_), "SQLite");
        }
    }

    sqlite3* database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
    bool onRow_ = false;
    std::vector<std::string> columns_;
};

} // namespace

SqliteConnection::SqliteConnection(const std::filesystem::path& file)
    : database_(Engine([&] {
          return SQLite::Database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX,
                                  LockWaitMilliseconds);
      })) {
    Engine([this] {
        writeAhead_ = database_.execAndGet("PRAGMA journal_mode").getString() == "wal";
        if (writeAhead_) {
            // A write-ahead log keeps the statements' order by itself, so that one sync, in Flush, covers
            // them all. In a store with a rollback journal every statement has to sync for itself, as is the
            // engine's default.
            database_.exec("PRAGMA synchronous = NORMAL");
            // The engine would carry the log over, and sync, in the middle of a save; the hook takes that
            // over.
            sqlite3_wal_hook(
                database_.getHandle(),
                [](void* connection, sqlite3*, const char*, int pages) {
                    static_cast<SqliteConnection*>(connection)->logPages_ = pages;
                    return SQLITE_OK;
                },
                this);
        }
    });
}

std::unique_ptr<Statement> SqliteConnection::Prepare(const std::string& sql) {
    return std::make_unique<SqliteStatement>(database_.getHandle(), sql);
}

void SqliteConnection::Flush() {
    if (!writeAhead_) {
        return;
    }
    Engine([this] {
        // The log is synced as part of a commit, and with it all that was committed before; the number
        // written is the one that stands there.
        const std::string version = database_.execAndGet("PRAGMA user_version").getString();
        database_.exec("PRAGMA synchronous = FULL");
        database_.exec("PRAGMA user_version = " + version);
        database_.exec("PRAGMA synchronous = NORMAL");
        if (logPages_ > LogPagesToKeep) {
            database_.exec("PRAGMA wal_checkpoint(PASSIVE)");
        }
    });
}

} // namespace KAL_AUTO_Node
