#pragma once

#include "platform/RuntimeError.h"
#include "store/Connection.h"
#include "store/PortableSql.h"
#include "store/ServerLink.h"
#include "store/ServerModule.h"

#include <array>
#include <chrono>
#include <libpq-fe.h>
#include <map>
#include <unordered_map>

namespace KAL_AUTO_Node {

class PostgresStatement;

// The shared engine: a database on a PostgreSQL server. Statements travel in the protocol's pipelines, a
// transaction's beginning together with its first statement. A lost connection fails what was under way; what
// comes next connects anew, with several servers in the URI to the one that takes writes by then.
class PostgresConnection : public Connection {
  public:
    // As OpenServer.
    PostgresConnection(std::string uri, ServerUse use, const Waits& waits);
    ~PostgresConnection() override;

    PostgresConnection(const PostgresConnection&) = delete;
    PostgresConnection& operator=(const PostgresConnection&) = delete;

    [[nodiscard]] std::string Place() const override { return place_; }

    std::unique_ptr<Statement> Prepare(const std::string& sql) override;
    void Begin(std::optional<std::int64_t> number) override;
    void Commit() override;
    void Rollback() noexcept override;
    bool BeginReading() override;
    bool EndReading() noexcept override;
    [[nodiscard]] bool HasTable(const std::string& name) override;
    void RunScript(const char* sql) override;

    [[nodiscard]] int Version() const override { return version_; }

    void SetVersion(int version) override;

    [[nodiscard]] bool IsRemote() const override { return true; }

    [[nodiscard]] std::string Role() const override { return role_; }

    std::vector<std::int64_t> RunTogether(std::span<const StatementRun> runs, Then then,
                                          std::size_t& reached) override;
    void FetchAhead(std::span<const StatementRun> runs, std::size_t& reached) override;

    void DropAhead() noexcept override { ahead_.clear(); }

    [[nodiscard]] std::optional<std::int64_t> ChangeMark() override;

    void LetGo() override;

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
    std::vector<Result> RoundTrip(std::span<const StatementRun> runs, std::span<const char* const> plain,
                                  std::size_t& reached);

    // In the order in which the results come.
    struct Sent {
        enum Kind { Beginning, Preparation, Execution, Plain } kind;

        std::size_t run; // which of the runs, or the one reached by then
    };

    struct Failure {
        RuntimeError error;
        std::string state; // the server's code
    };

    struct Answer {
        std::vector<Result> results;
        std::optional<Failure> failure; // the first
    };

    void Send(const StatementRun& run, std::vector<Sent>& sent, std::size_t index);
    void SendPlain(const char* sql);
    // Outside of the pipelines: several statements at once; the rows of the last that has any.
    Result Script(const char* sql);
    Answer Receive(std::span<const StatementRun> runs, const std::vector<Sent>& sent, std::size_t& reached);
    // What is left once the last statement has its result: whether it took effect.
    void ReceiveEnd(Answer& answer);
    void Take(const PGresult* result, const NumberedStatement* statement, Answer& answer);
    // The next result, or none at the end of those of a statement.
    Result Next();
    void Await();
    // The limits of time and of bytes begin anew.
    void AwaitAnother();
    // What the client library says of its own calls.
    void Require(int done);
    [[noreturn]] void FailLost(std::string why = {});
    // Without what a link holds of passwords.
    [[nodiscard]] RuntimeError Error(ErrorNumber number, const std::string& what) const;

    [[nodiscard]] std::string WithSchema(std::string_view sql) const;

    // The last statement of a transaction, and what comes after it: the server ends one that failed, too.
    // With it others are told that something has changed. The server lets one such commit wait for another,
    // which takes as long as a disk, or a further server, does.
    static constexpr std::array<const char*, 3> Committing = {"SET LOCAL lock_timeout = '10s'",
                                                              "NOTIFY auto_node_changed", "COMMIT"};

    // One that has failed already only ends.
    [[nodiscard]] std::span<const char* const> Commits() const {
        const std::span<const char* const> all = Committing;
        return PQtransactionStatus(connection_.get()) == PQTRANS_INERROR ? all.last(1) : all;
    }

    static constexpr std::array<const char*, 1> Listening = {"LISTEN auto_node_changed"};
    static constexpr std::array<const char*, 1> Ending = {"ROLLBACK"};
    static constexpr const char* Unexpected = "The server gives an answer that was not asked for";
    void Committed(const Result& result);

    std::string uri_;
    ServerUse use_;
    Waits waits_;
    std::unique_ptr<PGconn, Finish> connection_;
    LinkSecrets secrets_;
    std::string place_;
    std::string role_;
    std::string schema_;                        // of tables that are made; as statements name it, with a dot
    std::map<std::string, std::string> tables_; // known to be there, in lower case, with their schemas
    int version_ = 0;
    int connects_ = 0;   // how often; statements are prepared once for each
    int statements_ = 0; // how many have got a name
    int listens_ = 0;    // on which of the connections others are heard of
    std::int64_t heard_ = 0;
    std::unordered_map<std::string, Result> ahead_;
    std::vector<std::string> beginning_; // of a transaction, not sent yet
    bool inTransaction_ = false;
    bool readingEnds_ = false; // to be told to the server before whatever comes next
    bool committing_ = false;  // what is sent may have taken effect, and no answer tells yet
    // For one statement. The server stops it of its own accord after ten seconds.
    std::chrono::milliseconds answerLimit_{15'000};
    std::chrono::steady_clock::time_point answerBy_;
    std::int64_t received_ = 0; // bytes, of the result that is awaited
};

} // namespace KAL_AUTO_Node
