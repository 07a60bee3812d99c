#include "store/SqliteConnection.h"

#include "platform/RuntimeError.h"

#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
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

class SqliteStatement : public Statement {
  public:
    SqliteStatement(SQLite::Database& database, const std::string& sql) : statement_(database, sql) {
        for (int column = 0; column < statement_.getColumnCount(); ++column) {
            columns_.emplace_back(statement_.getColumnName(column));
        }
    }

    [[nodiscard]] std::size_t ParameterCount() const override {
        return static_cast<std::size_t>(statement_.getBindParameterCount());
    }

    [[nodiscard]] std::span<const std::string> Columns() const override { return columns_; }

    void Run(std::span<const std::string> parameters) override {
        Engine([&] {
            for (std::size_t i = 0; i < parameters.size(); ++i) {
                statement_.bindNoCopy(static_cast<int>(i + 1), parameters[i]);
            }
            statement_.executeStep();
        });
    }

    [[nodiscard]] bool AtEnd() const override { return !statement_.hasRow(); }

    void MoveNext() override {
        Engine([&] { statement_.executeStep(); });
    }

    [[nodiscard]] std::optional<std::string_view> Field(std::size_t column) const override {
        const SQLite::Column field = statement_.getColumn(static_cast<int>(column));
        if (field.isNull()) {
            return std::nullopt;
        }
        const char* text = field.getText();
        return std::string_view(text, static_cast<std::size_t>(field.getBytes()));
    }

    void Close() noexcept override { static_cast<void>(statement_.tryReset()); }

  private:
    mutable SQLite::Statement statement_;
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
    return Engine([&] { return std::make_unique<SqliteStatement>(database_, sql); });
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
