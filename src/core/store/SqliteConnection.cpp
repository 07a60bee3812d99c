#include "store/SqliteConnection.h"

#include "platform/Counted.h"
#include "platform/NumericValue.h"
#include "platform/RuntimeError.h"
#include "store/StoreFormat.h"

#include <sqlite3.h>

#include <array>
#include <charconv>
#include <limits>
#include <string_view>
#include <sys/statvfs.h>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

namespace {

// Beyond this the log is carried over into the file at the end of a save, 32 MiB with the usual pages: above
// what the saves of a long session write as a rule, and so little that nobody minds it.
constexpr int LogPagesToKeep = 8192;
constexpr const char* LogBytesToKeep = "PRAGMA journal_size_limit = 33554432";

// How many of the engine's steps pass between two looks at the clock; a few milliseconds.
constexpr int StepsBetweenLooks = 100'000;

// Where the log can neither be made nor written: a medium or a folder that is only to be read.
bool LacksLog(int result) { return result == SQLITE_CANTOPEN || result == SQLITE_READONLY; }

// What readers still need stays in the log until a later time; the log begins anew, and is cut to its usual
// size, with the first write after all of it was carried over. What it holds is safe there, so that a failure
// to carry it over is nobody's.
void CarryLogOver(sqlite3* engine) {
    sqlite3_wal_checkpoint_v2(engine, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
}

class SqliteStatement : public Statement {
  public:
    SqliteStatement(sqlite3* database, const std::string& sql, SqliteConnection::Since*& running,
                    std::chrono::milliseconds limit)
        : database_(database), running_(running), limit_(limit) {
        sqlite3_stmt* statement = nullptr;
        Require(sqlite3_prepare_v2(database, sql.c_str(), static_cast<int>(sql.size()), &statement, nullptr));
        statement_.reset(statement);
        NameColumns();
    }

    [[nodiscard]] std::size_t ParameterCount() const override {
        return static_cast<std::size_t>(sqlite3_bind_parameter_count(statement_.get()));
    }

    [[nodiscard]] std::span<const std::string> Columns() const override { return columns_; }

    void Run(std::span<const std::optional<std::string>> parameters) override {
        int position = 0;
        for (const auto& parameter : parameters) {
            ++position;
            Require(parameter ? sqlite3_bind_text(statement_.get(), position, parameter->data(),
                                                  static_cast<int>(parameter->size()), SQLITE_STATIC)
                              : sqlite3_bind_null(statement_.get(), position));
        }
        since_.reset();
        const bool alone = sqlite3_get_autocommit(database_) != 0;
        int result = Step();
        if (result == SQLITE_FULL && alone) {
            // The engine has taken back the whole statement, and with it all of a transaction that it was
            // part of. Where the log is what fills the disk, it begins anew once it is carried over.
            CarryLogOver(database_);
            result = Step();
        }
        Arrive(result);
        // The engine prepares anew by itself where another program has changed the tables, and their columns
        // may then stand in other places.
        if (sqlite3_stmt_status(statement_.get(), SQLITE_STMTSTATUS_REPREPARE, 0) != timesPreparedAnew_) {
            NameColumns();
        }
    }

    [[nodiscard]] bool AtEnd() const override { return !onRow_; }

    void MoveNext() override { Arrive(Step()); }

    [[nodiscard]] std::optional<std::string_view> Field(std::size_t column) const override {
        const auto position = static_cast<int>(column);
        // As most are; the engine makes a number a text in several steps.
        if (sqlite3_column_type(statement_.get(), position) == SQLITE_INTEGER) {
            Digits& digits = digits_[column];
            const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                           sqlite3_column_int64(statement_.get(), position))
                                 .ptr;
            return std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data()));
        }
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
    using Digits = std::array<char, std::numeric_limits<std::int64_t>::digits10 + 2>; // and a sign

    struct Finalize {
        void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
    };

    int Step() {
        // Time that passes between two rows is not the statement's.
        if (since_) {
            *since_ += std::chrono::steady_clock::now() - left_;
        }
        running_ = &since_;
        const int result = sqlite3_step(statement_.get());
        running_ = nullptr;
        if (since_) {
            left_ = std::chrono::steady_clock::now();
        }
        return result;
    }

    void Arrive(int result) {
        onRow_ = result == SQLITE_ROW;
        if (!onRow_ && result != SQLITE_DONE) {
            Require(result);
        }
    }

    void NameColumns() {
        timesPreparedAnew_ = sqlite3_stmt_status(statement_.get(), SQLITE_STMTSTATUS_REPREPARE, 0);
        columns_.clear();
        for (int column = 0; column < sqlite3_column_count(statement_.get()); ++column) {
            columns_.emplace_back(sqlite3_column_name(statement_.get(), column));
        }
        digits_.resize(columns_.size());
    }

    void Require(int result) const {
        if (result == SQLITE_INTERRUPT) {
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "Stopped after " + CountedSeconds(limit_) + " of work", "SQLite");
        }
        RequireSqlite(result, database_);
    }

    sqlite3* database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
    SqliteConnection::Since*& running_;
    std::chrono::milliseconds limit_;
    SqliteConnection::Since since_;
    std::chrono::steady_clock::time_point left_; // when the engine was left, once it was seen to last
    bool onRow_ = false;
    int timesPreparedAnew_ = 0;
    std::vector<std::string> columns_;
    mutable std::vector<Digits> digits_; // of the row reached, those that were asked for
};

} // namespace

SqliteConnection::SqliteConnection(const std::filesystem::path& file, const Waits& waits)
    : file_(file), waits_(waits), database_(OpenSqliteFile(file)), place_("file '" + file.string() + '\'') {
    SetUp(database_.get());
}

void SqliteConnection::SetUp(sqlite3* engine) {
    sqlite3_busy_timeout(engine, static_cast<int>(waits_.lock.count()));
    // What stands in the file is data, whoever wrote it: its views and triggers call nothing that does more
    // than compute, and nothing that runs here can damage the file's own structure.
    sqlite3_db_config(engine, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(engine, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_progress_handler(
        engine, StepsBetweenLooks,
        [](void* self) {
            const auto& connection = *static_cast<SqliteConnection*>(self);
            Since* since = connection.running_;
            if (since == nullptr) {
                return 0;
            }
            const auto now = std::chrono::steady_clock::now();
            if (!*since) {
                *since = now;
            }
            return now - **since > connection.waits_.work || connection.waits_.AreInVain() ? 1 : 0;
        },
        this);
}

SqliteConnection::~SqliteConnection() {
    sqlite3_busy_timeout(database_.get(), 0);
    // Takes away the journal that Recognizes asked to keep. Not where the store has a write-ahead log, by now
    // perhaps: it would lose it. Where somebody else is at work there it stays.
    std::string mode;
    if (AskSqlite(database_.get(), "PRAGMA journal_mode", mode) == SQLITE_OK && mode == "persist") {
        static_cast<void>(RunSqlite(database_.get(), "PRAGMA journal_mode = DELETE"));
    }
}

std::string SqliteConnection::Ask(const char* sql) {
    auto& statement = kept_[sql];
    if (!statement) {
        statement = std::make_unique<SqliteStatement>(database_.get(), sql, running_, waits_.work);
    }
    const auto close = [](Statement* run) { run->Close(); };
    const std::unique_ptr<Statement, decltype(close)> run(statement.get(), close);
    run->Run({});
    return run->AtEnd() ? std::string() : std::string(run->Field(0).value_or(""));
}

std::int64_t SqliteConnection::Number(const char* sql) { return NumericValue(Ask(sql)); }

bool SqliteConnection::ReadWithoutLog() {
    struct statvfs medium {};

    SqliteHandle other;
    if (statvfs(file_.c_str(), &medium) == 0 && (medium.f_flag & ST_RDONLY) != 0 &&
        !std::filesystem::exists(file_.string() + "-wal")) {
        other = OpenUnchanging(file_);
    } else if (const auto bytes = BytesAtRest(file_)) {
        other = OpenImage(*bytes);
    } else {
        return false;
    }
    kept_.clear();
    database_ = std::move(other);
    SetUp(database_.get());
    return true;
}

bool SqliteConnection::Recognizes() {
    std::string mode;
    int result = AskSqlite(database_.get(), "PRAGMA journal_mode", mode);
    if (LacksLog(result) && ReadWithoutLog()) {
        result = AskSqlite(database_.get(), "PRAGMA journal_mode", mode);
    }
    if (result == SQLITE_NOTADB) {
        return false;
    }
    RequireSqlite(result, database_.get());
    writeAhead_ = mode == "wal";
    if (Number("PRAGMA application_id") == StoreApplicationId) {
        version_ = static_cast<int>(Number("PRAGMA user_version"));
        RequireKnownVersion(version_, place_);
    }
    if (sqlite3_db_readonly(database_.get(), "main") != 0) {
        return true;
    }
    if (!writeAhead_) {
        // Every statement has to sync for itself here, as is the engine's default. A journal that stays
        // between them spares making and removing a file, and syncing its folder, each time.
        RunScript("PRAGMA journal_mode = PERSIST");
        return true;
    }
    // A write-ahead log keeps the statements' order by itself, so that one sync, in Flush, covers them all.
    RunScript("PRAGMA synchronous = NORMAL");
    RunScript(LogBytesToKeep);
    // The engine would carry the log over, and sync, in the middle of a save; the hook takes that over.
    sqlite3_wal_hook(
        database_.get(),
        [](void* connection, sqlite3*, const char*, int pages) {
            static_cast<SqliteConnection*>(connection)->logPages_ = pages;
            return SQLITE_OK;
        },
        this);
    return true;
}

std::string SqliteConnection::FirstBytes(std::size_t count) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(database_.get(), nullptr, SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file));
    std::string bytes(count, '\0');
    // Filled up with NULs where the file is shorter.
    const int result = file->pMethods->xRead(file, bytes.data(), static_cast<int>(count), 0);
    return result == SQLITE_OK || result == SQLITE_IOERR_SHORT_READ ? bytes : std::string();
}

std::unique_ptr<Statement> SqliteConnection::Prepare(const std::string& sql) {
    return std::make_unique<SqliteStatement>(snapshot_ ? snapshot_.get() : database_.get(), sql, running_,
                                             waits_.work);
}

void SqliteConnection::Begin(std::optional<std::int64_t>) {
    int moved = 0;
    sqlite3_file_control(database_.get(), nullptr, SQLITE_FCNTL_HAS_MOVED, &moved);
    if (moved != 0) {
        // The engine would write into the file that is gone, for nobody to see.
        throw RuntimeError(ErrorNumber::StoreNotFound,
                           "The store's file was moved, replaced or deleted while it was open here, so that "
                           "nothing can be saved; close the window and open it anew");
    }
    RunScript("BEGIN IMMEDIATE");
}

void SqliteConnection::Commit() { RunScript("COMMIT"); }

void SqliteConnection::Rollback() noexcept { static_cast<void>(RunSqlite(database_.get(), "ROLLBACK")); }

bool SqliteConnection::BeginReading() {
    if (writeAhead_ || sqlite3_db_readonly(database_.get(), "main") != 0) {
        static_cast<void>(Ask("BEGIN"));
        return false;
    }
    // Without a log who writes waits for all who read; it takes milliseconds to copy what a file holds.
    snapshot_ = OpenImage(ImageOf(database_.get()));
    SetUp(snapshot_.get());
    return true;
}

bool SqliteConnection::EndReading() noexcept {
    if (snapshot_) {
        snapshot_.reset();
        return true;
    }
    try {
        static_cast<void>(Ask("ROLLBACK"));
    } catch (const RuntimeError&) {
        return false; // the engine has ended it by itself
    }
    return false;
}

bool SqliteConnection::HasFreeSnapshots() const {
    return writeAhead_ && sqlite3_get_autocommit(database_.get()) != 0;
}

bool SqliteConnection::HasTable(const std::string& name) {
    // Tables come and go with the schema's version, which costs less to ask for than a search for one.
    if (const std::int64_t schema = Number("PRAGMA schema_version"); schema != tablesOf_) {
        tables_.clear();
        tablesOf_ = schema;
    }
    if (tables_.contains(name)) {
        return true;
    }
    // The engine finds tables whatever the case of their names.
    const auto table =
        Prepare("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = :Name COLLATE NOCASE");
    const std::array<std::optional<std::string>, 1> parameters = {name};
    table->Run(parameters);
    if (!table->AtEnd()) {
        tables_.insert(name);
    }
    return !table->AtEnd();
}

void SqliteConnection::SetVersion(int version) {
    RunScript(("PRAGMA user_version = " + std::to_string(version)).c_str());
    version_ = version;
}

std::optional<std::int64_t> SqliteConnection::ChangeMark() {
    std::string mark;
    sqlite3_busy_timeout(database_.get(), 0);
    const int result = AskSqlite(database_.get(), "PRAGMA data_version", mark);
    sqlite3_busy_timeout(database_.get(), static_cast<int>(waits_.lock.count()));
    return result == SQLITE_OK ? std::optional<std::int64_t>(NumericValue(mark)) : std::nullopt;
}

std::optional<std::int64_t> SqliteConnection::Compact() {
    const std::int64_t before = Number("PRAGMA page_count");
    if (Number("PRAGMA freelist_count") > 0) {
        RunScript("VACUUM");
        CarryLogOver(database_.get());
    }
    return (before - Number("PRAGMA page_count")) * Number("PRAGMA page_size");
}

void SqliteConnection::RunScript(const char* sql) {
    RequireSqlite(RunSqlite(database_.get(), sql), database_.get(), ErrorNumber::PermissionDenied);
}

void SqliteConnection::Flush() {
    if (!writeAhead_) {
        return;
    }
    sqlite3* engine = database_.get();
    // Every commit has written its pages into the log by now, and what another program has carried over since
    // it synced first. So this sync completes what was written; it needs no lock and writes nothing.
    sqlite3_file* log = nullptr;
    sqlite3_file_control(engine, nullptr, SQLITE_FCNTL_JOURNAL_POINTER, static_cast<void*>(&log));
    if (log != nullptr && log->pMethods != nullptr) {
        if (const int result = log->pMethods->xSync(log, SQLITE_SYNC_NORMAL); result != SQLITE_OK) {
            RequireSqlite(result);
        }
    }
    if (logPages_ > LogPagesToKeep) {
        CarryLogOver(engine);
    }
}

} // namespace KAL_AUTO_Node
