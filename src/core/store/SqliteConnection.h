#pragma once

#include "store/Connection.h"
#include "store/SqliteHandle.h"
#include "store/Waits.h"

#include <chrono>
#include <map>
#include <set>

namespace KAL_AUTO_Node {

// The embedded engine: one file, shared with the suite's other programs through the file's own locks.
class SqliteConnection : public Connection {
  public:
    // When a run of a statement was first seen to last; none as long as it did not.
    using Since = std::optional<std::chrono::steady_clock::time_point>;

    // Opens the file, which must exist, and reads nothing yet.
    explicit SqliteConnection(const std::filesystem::path& file, const Waits& waits = {});
    ~SqliteConnection() override;

    // Whether the file is one of this engine's; only then the connection is ready for use. Raises
    // StoreNotRecognized for a store of a version that is not known here yet.
    [[nodiscard]] bool Recognizes();
    // What a file begins with that is none of this engine's, so far as it goes. Read through the engine's own
    // handle: to open and close a file beside it would take away every lock that this process has on it.
    [[nodiscard]] std::string FirstBytes(std::size_t count);

    [[nodiscard]] std::string Place() const override { return place_; }

    std::unique_ptr<Statement> Prepare(const std::string& sql) override;
    void Begin(std::optional<std::int64_t> number) override;
    void Commit() override;
    void Rollback() noexcept override;
    bool BeginReading() override;
    bool EndReading() noexcept override;
    [[nodiscard]] bool HasFreeSnapshots() const override;
    [[nodiscard]] bool HasTable(const std::string& name) override;

    [[nodiscard]] int Version() const override { return version_; }

    void SetVersion(int version) override;
    [[nodiscard]] std::optional<std::int64_t> ChangeMark() override;
    std::optional<std::int64_t> Compact() override;
    void RunScript(const char* sql) override;
    void Flush() override;

    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

  private:
    // The limits of whatever runs on that handle.
    void SetUp(sqlite3* engine);
    // Runs a statement that is run over and over, prepared once, and gives what it answers, if anything.
    std::string Ask(const char* sql);
    [[nodiscard]] std::int64_t Number(const char* sql);
    // Where the store can only be read, and there is no log that could be: goes on with what the file holds.
    bool ReadWithoutLog();

    std::filesystem::path file_;
    Waits waits_;
    SqliteHandle database_;
    std::map<std::string_view, std::unique_ptr<Statement>>
        kept_;                     // of database_, by their texts, which are constants
    SqliteHandle snapshot_;        // in the place of a file whose readers keep others from writing
    std::set<std::string> tables_; // that are known to be there
    std::int64_t tablesOf_ = 0;    // the schema's version then
    std::string place_;
    int version_ = 0;
    bool writeAhead_ = false;
    int logPages_ = 0;         // in the write-ahead log after the latest commit of this connection
    Since* running_ = nullptr; // of the statement that the engine is working on
};

} // namespace KAL_AUTO_Node
