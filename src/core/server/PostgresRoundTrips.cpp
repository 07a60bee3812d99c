// What travels between a PostgresConnection and its server.

#include "platform/Counted.h"
#include "platform/FoldCase.h"
#include "platform/Interruption.h"
#include "server/PostgresErrors.h"
#include "server/PostgresStatement.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/ioctl.h>
#include <thread>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Of one result. The rows of a partition with all nodes that there can be, of a hundred rows each, have half.
constexpr std::int64_t ResultLimit = std::int64_t{512} << 20;

// What others' work at the same moment has taken back is done once more.
constexpr int MostTries = 10;
constexpr std::chrono::milliseconds BetweenTries(10);

// Whether somebody wants to end the process.
constexpr std::chrono::milliseconds BetweenLooks(200);

// The same run again has the same text.
std::string TextOf(const StatementRun& run) {
    std::string text = std::to_string(reinterpret_cast<std::uintptr_t>(run.statement));
    for (const auto& parameter : run.parameters) {
        // No value holds a NUL.
        text += '\0';
        text += parameter ? 't' : 'n';
        text += parameter.value_or("");
    }
    return text;
}

// The server's texts end at a NUL.
void RequireTexts(const StatementRun& run) {
    for (const auto& parameter : run.parameters) {
        if (parameter && parameter->find('\0') != std::string::npos) {
            throw RuntimeError(ErrorNumber::StoreFailure, "A text with a NUL in it cannot be stored",
                               PostgresName);
        }
    }
}

// Rows that a client could not read after a change of the tables, or a connection that is another's by now.
bool IsOutdated(std::string_view state) { return state == "0A000" || state == "26000"; }

// It was only the moment: serialization failure, deadlock.
bool IsPassing(std::string_view state) { return state == "40001" || state == "40P01"; }

bool EndsConnection(const PGresult* failed) {
    const char* severity = PQresultErrorField(failed, PG_DIAG_SEVERITY_NONLOCALIZED);
    return severity == nullptr || severity != std::string_view("ERROR");
}

bool Writes(const StatementRun& run) {
    return !static_cast<const PostgresStatement*>(run.statement)->Sql().starts_with("SELECT");
}

} // namespace

PostgresConnection::Result PostgresConnection::Run(PostgresStatement& statement,
                                                   std::span<const std::optional<std::string>> parameters) {
    const StatementRun run{&statement, parameters};
    if (!ahead_.empty()) {
        if (const auto found = ahead_.find(TextOf(run)); found != ahead_.end()) {
            return found->second;
        }
    }
    std::size_t reached = 0;
    auto results = RoundTrip({&run, 1}, {}, reached);
    if (PQresultStatus(results.front().get()) == PGRES_COMMAND_OK) {
        ahead_.clear();
    }
    return std::move(results.front());
}

std::vector<std::int64_t> PostgresConnection::RunTogether(std::span<const StatementRun> runs, Then then,
                                                          std::size_t& reached) {
    ahead_.clear();
    const std::span<const char* const> none;
    const auto results = RoundTrip(runs, then == Then::Commit ? Commits() : none, reached);
    if (then == Then::Commit) {
        Committed(results.back());
    }
    std::vector<std::int64_t> written;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        auto& statement = static_cast<PostgresStatement&>(*runs[i].statement);
        statement.result_ = results[i];
        written.push_back(statement.RowsWritten());
        statement.Close();
    }
    return written;
}

void PostgresConnection::FetchAhead(std::span<const StatementRun> runs, std::size_t& reached) {
    std::vector<StatementRun> fetched;
    std::vector<std::size_t> places; // among the runs
    std::vector<std::string> texts;
    for (const StatementRun& run : runs) {
        std::string text = TextOf(run);
        if (ahead_.try_emplace(text).second) {
            fetched.push_back(run);
            places.push_back(static_cast<std::size_t>(&run - runs.data()));
            texts.push_back(std::move(text));
        }
    }
    try {
        auto results = RoundTrip(fetched, {}, reached);
        for (std::size_t i = 0; i < results.size(); ++i) {
            ahead_[texts[i]] = std::move(results[i]);
        }
    } catch (const RuntimeError&) {
        for (const std::string& text : texts) {
            ahead_.erase(text);
        }
        if (inTransaction_) {
            reached = reached < places.size() ? places[reached] : runs.size();
            throw;
        }
    }
}

std::vector<PostgresConnection::Result> PostgresConnection::RoundTrip(std::span<const StatementRun> runs,
                                                                      std::span<const char* const> plain,
                                                                      std::size_t& reached) {
    for (reached = 0; reached < runs.size(); ++reached) {
        RequireTexts(runs[reached]);
    }
    BeReady();
    // Whether all of the transaction is here, so that it can be done once more.
    const bool whole = !inTransaction_ || !beginning_.empty();
    auto beginning = std::exchange(beginning_, {});
    if (std::exchange(readingEnds_, false)) {
        beginning.insert(beginning.begin(), Ending.front());
    }
    if (beginning.size() + runs.size() + plain.size() == 0) {
        return {};
    }
    for (int tries = 1;; ++tries) {
        std::vector<Sent> sent;
        AwaitAnother();
        for (const std::string& sql : beginning) {
            SendPlain(sql.c_str());
            sent.push_back({Sent::Beginning, 0});
        }
        for (std::size_t i = 0; i < runs.size(); ++i) {
            Send(runs[i], sent, i);
        }
        // The end of the pipeline commits what is no part of a transaction.
        committing_ = (!plain.empty() && plain.back() == Committing.back()) ||
                      (!inTransaction_ && std::ranges::any_of(runs, Writes));
        for (const char* sql : plain) {
            SendPlain(sql);
            sent.push_back({Sent::Plain, runs.size()});
        }
        Require(PQpipelineSync(connection_.get()));
        Answer answer = Receive(runs, sent, reached);
        if (!answer.failure) {
            return std::move(answer.results);
        }
        const std::string& state = answer.failure->state;
        if (IsOutdated(state)) {
            for (const StatementRun& run : runs) {
                static_cast<PostgresStatement*>(run.statement)->preparedFor_ = 0;
            }
        }
        if (!whole || !(IsOutdated(state) ? tries == 1 : IsPassing(state) && tries < MostTries)) {
            throw RuntimeError(answer.failure->error);
        }
        std::this_thread::sleep_for(tries * BetweenTries);
        if (!beginning.empty() && beginning.front() != Ending.front()) {
            beginning.insert(beginning.begin(), Ending.front());
        }
    }
}

void PostgresConnection::Send(const StatementRun& run, std::vector<Sent>& sent, std::size_t index) {
    PGconn* connection = connection_.get();
    auto& statement = static_cast<PostgresStatement&>(*run.statement);
    if (statement.preparedFor_ != connects_) {
        statement.name_ = 's';
        statement.name_ += std::to_string(++statements_);
        Require(PQsendPrepare(connection, statement.name_.c_str(), WithSchema(statement.text_.sql).c_str(), 0,
                              nullptr));
        statement.preparedFor_ = connects_;
        statement.named_ = false;
        sent.push_back({Sent::Preparation, index});
    }
    std::vector<const char*> values;
    values.reserve(run.parameters.size());
    for (const auto& parameter : run.parameters) {
        values.push_back(parameter ? parameter->c_str() : nullptr);
    }
    Require(PQsendQueryPrepared(connection, statement.name_.c_str(), static_cast<int>(values.size()),
                                values.data(), nullptr, nullptr, 0));
    sent.push_back({Sent::Execution, index});
}

void PostgresConnection::SendPlain(const char* sql) {
    Require(PQsendQueryParams(connection_.get(), sql, 0, nullptr, nullptr, nullptr, nullptr, 0));
}

PostgresConnection::Answer PostgresConnection::Receive(std::span<const StatementRun> runs,
                                                       const std::vector<Sent>& sent, std::size_t& reached) {
    Answer answer;
    answer.results.reserve(runs.size());
    for (const auto& [kind, index] : sent) {
        if (!answer.failure) {
            reached = index;
        }
        Result result = Next();
        if (!result) {
            FailLost();
        }
        auto* const statement = kind == Sent::Preparation || kind == Sent::Execution
                                    ? static_cast<PostgresStatement*>(runs[index].statement)
                                    : nullptr;
        if (kind == Sent::Preparation && PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
            statement->preparedFor_ = 0;
        }
        Take(result.get(), statement != nullptr ? &statement->text_ : nullptr, answer);
        if (!answer.failure && (kind == Sent::Execution || kind == Sent::Plain)) {
            answer.results.push_back(std::move(result));
        }
        if (Next()) {
            FailLost(answer.failure ? answer.failure->error.what() : Unexpected);
        }
        AwaitAnother();
    }
    ReceiveEnd(answer);
    return answer;
}

void PostgresConnection::ReceiveEnd(Answer& answer) {
    // A failure, with nothing before and behind it perhaps, and the mark of the end.
    constexpr int most = 4;
    for (int i = 0; i < most; ++i) {
        const Result result = Next();
        if (result && PQresultStatus(result.get()) == PGRES_PIPELINE_SYNC) {
            committing_ = false;
            return;
        }
        if (result) {
            Take(result.get(), nullptr, answer);
        }
    }
    FailLost();
}

void PostgresConnection::Take(const PGresult* result, const NumberedStatement* statement, Answer& answer) {
    switch (PQresultStatus(result)) {
    case PGRES_COMMAND_OK:
    case PGRES_TUPLES_OK:
    case PGRES_PIPELINE_ABORTED:
        break;
    case PGRES_FATAL_ERROR: {
        const RuntimeError told = ErrorOf(result, statement);
        const std::string state(StateOf(result));
        if (!answer.failure) {
            answer.failure = {Error(told.Number(), told.what()), state};
        }
        if (state == "42P01") {
            // One is gone that was known to be there.
            const std::string words = FoldAscii(told.what());
            std::erase_if(tables_,
                          [&](const auto& known) { return words.find(known.first) != std::string::npos; });
        }
        // What failed has not taken effect; unless it is the line's end that was told, or the server's when
        // it was at the last step.
        committing_ = committing_ && (state.empty() || (statement == nullptr && EndsConnection(result)));
        if (PQstatus(connection_.get()) == CONNECTION_BAD) {
            FailLost(answer.failure->error.what());
        }
        break;
    }
    default:
        FailLost(Unexpected);
    }
}

PostgresConnection::Result PostgresConnection::Script(const char* sql) {
    AwaitAnother();
    Require(PQsendQuery(connection_.get(), sql));
    Result rows;
    Answer answer;
    while (Result result = Next()) {
        Take(result.get(), nullptr, answer);
        if (PQresultStatus(result.get()) == PGRES_TUPLES_OK) {
            rows = std::move(result);
        }
    }
    if (answer.failure) {
        PQenterPipelineMode(connection_.get());
        throw RuntimeError(answer.failure->error);
    }
    return rows;
}

PostgresConnection::Result PostgresConnection::Next() {
    while (PQisBusy(connection_.get()) != 0) {
        Await();
    }
    return {PQgetResult(connection_.get()), PQclear};
}

void PostgresConnection::AwaitAnother() {
    answerBy_ = std::chrono::steady_clock::now() + answerLimit_;
    received_ = 0;
}

void PostgresConnection::Await() {
    PGconn* connection = connection_.get();
    const int unsent = PQflush(connection);
    Require(unsent >= 0 ? 1 : 0);
    pollfd socket{PQsocket(connection), static_cast<short>(unsent > 0 ? POLLIN | POLLOUT : POLLIN), 0};
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(answerBy_ - std::chrono::steady_clock::now());
    const auto wait = std::min(left, BetweenLooks);
    const int ready = wait.count() > 0 ? poll(&socket, 1, static_cast<int>(wait.count())) : 0;
    if (ready == 0 && (Interruption::IsWanted() || waits_.AreInVain())) {
        FailLost("Interrupted");
    }
    if (ready == 0 && left > wait) {
        return;
    }
    if (ready == 0) {
        FailLost("The server does not answer any more; waited " + CountedSeconds(answerLimit_));
    }
    Require(ready > 0 || errno == EINTR ? 1 : 0);
    int waiting = 0;
    static_cast<void>(ioctl(socket.fd, FIONREAD, &waiting));
    received_ += waiting;
    if (received_ > ResultLimit) {
        FailLost("The server sends more rows than any store has");
    }
    Require(PQconsumeInput(connection));
}

void PostgresConnection::Require(int done) {
    if (done == 0) {
        FailLost();
    }
}

void PostgresConnection::FailLost(std::string why) {
    if (why.empty() && connection_) {
        why = Trimmed(PQerrorMessage(connection_.get()));
    }
    connection_.reset();
    if (why.empty()) {
        why = "The connection to the server was lost";
    }
    if (std::exchange(committing_, false)) {
        throw Error(ErrorNumber::OutcomeUnknown,
                    why + ". It is not known whether what was to be stored is stored: all of it, or nothing");
    }
    throw Error(ErrorNumber::StoreUnreachable, why);
}

RuntimeError PostgresConnection::Error(ErrorNumber number, const std::string& what) const {
    return {number, secrets_.Masked(what), PostgresName};
}

} // namespace KAL_AUTO_Node
