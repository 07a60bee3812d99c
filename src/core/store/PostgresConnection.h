#pragma once

#include "store/Connection.h"

#include <array>
#include <libpq-fe.h>
#include <set>
#include <unordered_map>

namespace KAL_AUTO_Node {

class PostgresStatement;

// The shared engine: a database on a PostgreSQL server. Statements travel in the protocol's pipelines, a
// transaction's beginning together with its first statement. A lost connection fails what was under way; what
// comes next connects anew, with several servers in the URI to the one that takes writes by then.
class PostgresConnection : public Connection {
  public:
    // What the address is used for: stores are opened; where there is none yet, one is made.
    enum class Wanted { Store, Database };

    // Connects to the database that a connection URI names. Raises StoreFailure where that fails, and
    // StoreNotRecognized where it holds no store or one of a version that is not known here yet.
    explicit PostgresConnection(std::string uri, Wanted wanted = Wanted::Store);
    ~PostgresConnection() override;

    PostgresConnection(const PostgresConnection&) = delete;
    PostgresConnection& operator=(const PostgresConnection&) = delete;

    [[nodiscard]] std::string Place() const override { return place_; }

    std::unique_ptr<Statement> Prepare(const std::string& sql) override;
    void Begin(std::optional<std::int64_t> number) override;
    void Commit() override;
    void Rollback() noexcept override;
    [[nodiscard]] bool HasTable(const std::string& name) override;
    void RunScript(const char* sql) override;

    [[nodiscard]] bool IsRemote() const override { return true; }

    std::vector<std::int64_t> RunTogether(std::span<const StatementRun> runs, Then then,
                                          std::size_t& reached) override;
    void FetchAhead(std::span<const StatementRun> runs, std::size_t& reached) override;

    void DropAhead() noexcept override { ahead_.clear(); }

    // The server has it on its disks with each commit, as it is set up there.
    void Flush() override {}

  private:
    friend class PostgresStatement;

    struct Finish {
        void operator()(PGconn* connection) const noexcept { PQfinish(connection); }
    };

    using Result = std::shared_ptr<PGresult>;

    // The rows of one run of a statement, which were fetched ahead perhaps.
    Result Run(PostgresStatement& statement, std::span<const std::optional<std::string>> parameters);

    void Connect();
    void SetUp();
    // Ready to send, connected anew where the connection was lost and nothing is lost with it.
    void BeReady();
    // Sends the statements and plain ones after them, and waits for the results of both. Where one fails,
    // reached tells which; those after it have not run.
    std::vector<Result> Exchange(std::span<const StatementRun> runs, std::span<const char* const> plain,
                                 std::size_t& reached);

    // In the order in which the results come.
    struct Sent {
        enum Kind { Beginning, Preparation, Execution, Plain } kind;

        std::size_t run; // which of the runs, or the one reached by then
    };

    void Send(const StatementRun& run, std::vector<Sent>& sent, std::size_t index);
    void SendPlain(const char* sql);
    // Outside of the pipelines: several statements at once; the result of the last.
    Result Script(const char* sql);
    // Nothing where the statements have to be sent once more, because the tables have changed since they were
    // prepared.
    std::optional<std::vector<Result>> Receive(std::span<const StatementRun> runs,
                                               const std::vector<Sent>& sent, std::size_t& reached,
                                               bool mayRepeat);
    // The next result, or none at the end of those of a statement.
    Result Next();
    void Await();
    // What the client library says of its own calls.
    void Require(int done);
    [[noreturn]] void FailLost();

    // The last statement of a transaction, and what comes after it: the server ends one that failed, too.
    static constexpr std::array<const char*, 1> Committing = {"COMMIT"};
    void Committed(const Result& result);

    std::string uri_;
    Wanted wanted_;
    std::unique_ptr<PGconn, Finish> connection_;
    std::string place_;
    std::set<std::string> tables_; // known to be there, in lower case
    int connects_ = 0;             // how often; statements are prepared once for each
    int statements_ = 0;           // how many have got a name
    std::unordered_map<std::string, Result> ahead_;
    std::vector<std::string> beginning_; // of a transaction, not sent yet
    bool inTransaction_ = false;
};

} // namespace KAL_AUTO_Node
