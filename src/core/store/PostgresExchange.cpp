// What travels between a PostgresConnection and its server.

#include "store/PostgresErrors.h"
#include "store/PostgresStatement.h"

#include <cerrno>
#include <poll.h>

namespace KAL_AUTO_Node {

namespace {

// The server stops a statement of its own accord after ten seconds.
constexpr int AnswerLimitMilliseconds = 15'000;

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
bool IsOutdated(const PGresult* failed) {
    const std::string_view state = StateOf(failed);
    return state == "0A000" || state == "26000";
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
    auto results = Exchange({&run, 1}, {}, reached);
    if (PQresultStatus(results.front().get()) == PGRES_COMMAND_OK) {
        ahead_.clear();
    }
    return std::move(results.front());
}

std::vector<std::int64_t> PostgresConnection::RunTogether(std::span<const StatementRun> runs, Then then,
                                                          std::size_t& reached) {
    ahead_.clear();
    const std::span<const char* const> none;
    const auto results = Exchange(runs, then == Then::Commit ? Committing : none, reached);
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
        auto results = Exchange(fetched, {}, reached);
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

std::vector<PostgresConnection::Result> PostgresConnection::Exchange(std::span<const StatementRun> runs,
                                                                     std::span<const char* const> plain,
                                                                     std::size_t& reached) {
    for (reached = 0; reached < runs.size(); ++reached) {
        RequireTexts(runs[reached]);
    }
    BeReady();
    if (beginning_.size() + runs.size() + plain.size() == 0) {
        return {};
    }
    bool mayRepeat = !inTransaction_;
    while (true) {
        std::vector<Sent> sent;
        for (const std::string& sql : beginning_) {
            SendPlain(sql.c_str());
            sent.push_back({Sent::Beginning, 0});
        }
        beginning_.clear();
        for (std::size_t i = 0; i < runs.size(); ++i) {
            Send(runs[i], sent, i);
        }
        for (const char* sql : plain) {
            SendPlain(sql);
            sent.push_back({Sent::Plain, runs.size()});
        }
        Require(PQpipelineSync(connection_.get()));
        auto results = Receive(runs, sent, reached, mayRepeat);
        if (results) {
            return std::move(*results);
        }
        mayRepeat = false;
    }
}

void PostgresConnection::Send(const StatementRun& run, std::vector<Sent>& sent, std::size_t index) {
    PGconn* connection = connection_.get();
    auto& statement = static_cast<PostgresStatement&>(*run.statement);
    if (statement.preparedFor_ != connects_) {
        statement.name_ = 's';
        statement.name_ += std::to_string(++statements_);
        Require(PQsendPrepare(connection, statement.name_.c_str(), statement.text_.sql.c_str(), 0, nullptr));
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

std::optional<std::vector<PostgresConnection::Result>>
PostgresConnection::Receive(std::span<const StatementRun> runs, const std::vector<Sent>& sent,
                            std::size_t& reached, bool mayRepeat) {
    std::vector<Result> results;
    results.reserve(runs.size());
    std::optional<RuntimeError> failure;
    bool outdated = false;
    for (const auto& [kind, index] : sent) {
        if (!failure) {
            reached = index;
        }
        Result result = Next();
        if (!result) {
            FailLost();
        }
        while (Next()) {
        }
        const auto status = PQresultStatus(result.get());
        auto* const statement = kind == Sent::Preparation || kind == Sent::Execution
                                    ? static_cast<PostgresStatement*>(runs[index].statement)
                                    : nullptr;
        if (kind == Sent::Preparation && status != PGRES_COMMAND_OK) {
            statement->preparedFor_ = 0;
        }
        if (status == PGRES_FATAL_ERROR && !failure) {
            failure = ErrorOf(result.get(), statement != nullptr ? &statement->text_ : nullptr);
            outdated = IsOutdated(result.get());
        } else if (!failure && (kind == Sent::Execution || kind == Sent::Plain)) {
            results.push_back(std::move(result));
        }
        if (PQstatus(connection_.get()) == CONNECTION_BAD) {
            connection_.reset();
            if (failure) {
                throw RuntimeError(*failure);
            }
            FailLost();
        }
    }
    if (!Next()) {
        FailLost(); // not even the mark of the end
    }
    if (!failure) {
        return results;
    }
    if (outdated) {
        for (const StatementRun& run : runs) {
            static_cast<PostgresStatement*>(run.statement)->preparedFor_ = 0;
        }
    }
    if (outdated && mayRepeat) {
        return std::nullopt;
    }
    throw RuntimeError(*failure);
}

PostgresConnection::Result PostgresConnection::Script(const char* sql) {
    Require(PQsendQuery(connection_.get(), sql));
    Result last;
    std::optional<RuntimeError> failure;
    while (Result result = Next()) {
        if (PQresultStatus(result.get()) == PGRES_FATAL_ERROR) {
            failure = ErrorOf(result.get(), nullptr);
        }
        last = std::move(result);
    }
    if (failure) {
        PQenterPipelineMode(connection_.get());
        throw RuntimeError(*failure);
    }
    return last;
}

PostgresConnection::Result PostgresConnection::Next() {
    while (PQisBusy(connection_.get()) != 0) {
        Await();
    }
    return {PQgetResult(connection_.get()), PQclear};
}

void PostgresConnection::Await() {
    PGconn* connection = connection_.get();
    const int unsent = PQflush(connection);
    Require(unsent >= 0 ? 1 : 0);
    pollfd socket{PQsocket(connection), static_cast<short>(unsent > 0 ? POLLIN | POLLOUT : POLLIN), 0};
    const int ready = poll(&socket, 1, AnswerLimitMilliseconds);
    if (ready == 0) {
        connection_.reset();
        throw RuntimeError(ErrorNumber::StoreFailure,
                           "The server does not answer any more; waited " +
                               std::to_string(AnswerLimitMilliseconds / 1000) + " seconds",
                           PostgresName);
    }
    Require(ready > 0 || errno == EINTR ? 1 : 0);
    Require(PQconsumeInput(connection));
}

void PostgresConnection::Require(int done) {
    if (done == 0) {
        FailLost();
    }
}

void PostgresConnection::FailLost() {
    std::string why = connection_ ? Trimmed(PQerrorMessage(connection_.get())) : std::string();
    connection_.reset();
    if (why.empty()) {
        why = "The connection to the server was lost";
    }
    throw RuntimeError(ErrorNumber::StoreFailure, why, PostgresName);
}

} // namespace KAL_AUTO_Node
