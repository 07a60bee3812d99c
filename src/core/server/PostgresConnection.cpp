#include "server/PostgresConnection.h"

#include "platform/FoldCase.h"
#include "platform/NumericValue.h"
#include "server/PostgresErrors.h"
#include "server/PostgresStatement.h"
#include "store/StoreFormat.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <poll.h>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Used where neither the URI nor the environment nor a service file says otherwise: how long one waits for a
// server that does not answer. Seconds; the last in milliseconds.
constexpr std::array<std::pair<const char*, const char*>, 5> Patience = {{
    {"connect_timeout", "5"},
    {"keepalives_idle", "10"},
    {"keepalives_interval", "5"},
    {"keepalives_count", "2"},
    {"tcp_user_timeout", "15000"},
}};

// As in the embedded engine, a lock that lasts is reported and a statement that comes to no end is stopped. A
// window that hangs in the middle of a transaction keeps nobody from saving. Each statement has to see what
// was there when a lock was got, whatever the server's own default. Then, in the same answer, who this is,
// where tables are made, and what is there: the tables, and what says which version of them. Names are looked
// for in no schema of the server's users: in one where others may make functions, one that fits better than
// the server's own would be called.
constexpr const char* SetUpSession =
    "SET idle_in_transaction_session_timeout = '30s';"
    "SET default_transaction_isolation = 'read committed';"
    "SELECT NULL, pg_catalog.current_schema(), session_user UNION ALL "
    "SELECT c.relname, n.nspname, CASE c.relname WHEN 'node_auto' THEN pg_catalog.obj_description(c.oid, "
    "'pg_class') END FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace"
    " WHERE c.relkind IN ('r', 'v', 'p', 'f', 'm') AND n.nspname = ANY (pg_catalog.current_schemas(false))"
    " AND pg_catalog.pg_table_is_visible(c.oid);"
    "SET search_path = pg_catalog, pg_temp";

constexpr const char* StoreTable = "node_auto";

struct FreeOptions {
    void operator()(PQconninfoOption* options) const noexcept { PQconninfoFree(options); }
};

std::unique_ptr<PQconninfoOption, FreeOptions> Parsed(const std::string& uri) {
    char* message = nullptr;
    std::unique_ptr<PQconninfoOption, FreeOptions> options(PQconninfoParse(uri.c_str(), &message));
    if (!options) {
        std::string why = message != nullptr ? Trimmed(message) : "out of memory";
        PQfreemem(message);
        // What follows is a piece of the URI, with a password in it perhaps.
        why.erase(std::min(why.find_first_of(":\""), why.size()));
        throw RuntimeError(ErrorNumber::StoreNotRecognized, "The server's address cannot be read: " + why,
                           PostgresName);
    }
    return options;
}

std::string ValueOf(const PQconninfoOption* options, std::string_view keyword) {
    for (; options->keyword != nullptr; ++options) {
        if (options->keyword == keyword && options->val != nullptr) {
            return options->val;
        }
    }
    return {};
}

const char* OrEmpty(const char* text) { return text != nullptr ? text : ""; }

// As statements name it, with a dot; nothing for none.
std::string SchemaName(std::string_view name) {
    std::string quoted;
    for (const char c : name) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return name.empty() ? std::string() : '"' + quoted + "\".";
}

} // namespace

PostgresConnection::PostgresConnection(std::string uri, ServerUse use, const Waits& waits)
    : uri_(std::move(uri)), use_(use), waits_(waits), secrets_(uri_) {
    Connect();
}

PostgresConnection::~PostgresConnection() = default;

void PostgresConnection::Connect() {
    const auto given = Parsed(uri_);
    const bool service = !ValueOf(given.get(), "service").empty() || std::getenv("PGSERVICE") != nullptr;
    std::vector<const char*> keys;
    std::vector<const char*> values;
    const auto set = [&](const char* key, const char* value) {
        keys.push_back(key);
        values.push_back(value);
    };
    for (const auto& [key, value] : Patience) {
        if (!service &&
            (key != std::string_view("connect_timeout") || std::getenv("PGCONNECT_TIMEOUT") == nullptr)) {
            set(key, value);
        }
    }
    set("fallback_application_name", "auto-node");
    set("dbname", uri_.c_str()); // what it says wins over what stands before it
    set("client_encoding", "UTF8");
    set(nullptr, nullptr);
    connection_.reset(PQconnectdbParams(keys.data(), values.data(), 1));
    ++connects_;
    ahead_.clear();
    beginning_.clear();
    tables_.clear();
    if (!connection_) {
        throw std::bad_alloc();
    }
    PGconn* connection = connection_.get();
    if (PQstatus(connection) != CONNECTION_OK) {
        FailLost();
    }
    place_ = std::string("server '") + OrEmpty(PQhost(connection)) + ':' + OrEmpty(PQport(connection)) +
             "', database '" + OrEmpty(PQdb(connection)) + '\'';
    PQsetNoticeReceiver(
        connection, [](void*, const PGresult*) {}, nullptr);
    // How long one waits for a line, one waits for the server's word as well.
    const std::unique_ptr<PQconninfoOption, FreeOptions> used(PQconninfo(connection));
    if (const auto limit = NumericValue(ValueOf(used.get(), "tcp_user_timeout")); limit > 0) {
        answerLimit_ = std::chrono::milliseconds(limit);
    }
    try {
        SetUp();
    } catch (...) {
        connection_.reset();
        throw;
    }
}

void PostgresConnection::SetUp() {
    Require(PQsetnonblocking(connection_.get(), 1) == 0 ? 1 : 0);
    const std::string waits = "SET lock_timeout = " + std::to_string(waits_.lock.count()) +
                              "; SET statement_timeout = " + std::to_string(waits_.work.count()) + ';';
    const Result found = Script((waits + SetUpSession).c_str());
    if (PQntuples(found.get()) == 0 || PQnfields(found.get()) != 3) {
        FailLost(Unexpected);
    }
    const auto field = [&](int row, int column) { return PQgetvalue(found.get(), row, column); };
    schema_ = SchemaName(field(0, 1));
    role_ = field(0, 2);
    std::string comment;
    for (int row = 1; row < PQntuples(found.get()); ++row) {
        tables_.emplace(field(row, 0), SchemaName(field(row, 1)));
        comment += field(row, 2);
    }
    if (const auto store = tables_.find(StoreTable); store != tables_.end()) {
        schema_ = store->second;
    } else if (use_ == ServerUse::Store && !tables_.contains("node_general_pool")) {
        throw RuntimeError(ErrorNumber::StoreNotRecognized,
                           "There is no store on " + place_ +
                               "; \"auto-node init --server\" makes one, in an empty database",
                           PostgresName);
    }
    version_ = VersionIn(comment);
    RequireKnownVersion(version_, place_);
    Require(PQenterPipelineMode(connection_.get()));
}

void PostgresConnection::BeReady() {
    if (connection_ && beginning_.empty() && !inTransaction_) {
        // Takes in that the server has hung up meanwhile, and what it said before.
        pollfd socket{PQsocket(connection_.get()), POLLIN, 0};
        while (poll(&socket, 1, 0) > 0 && PQconsumeInput(connection_.get()) != 0) {
        }
    }
    if (connection_ && PQstatus(connection_.get()) == CONNECTION_OK) {
        return;
    }
    if (inTransaction_) {
        throw RuntimeError(ErrorNumber::StoreUnreachable,
                           "The change was lost with the connection to the server", PostgresName);
    }
    Connect();
}

std::unique_ptr<Statement> PostgresConnection::Prepare(const std::string& sql) {
    return std::make_unique<PostgresStatement>(*this, sql);
}

void PostgresConnection::Begin(std::optional<std::int64_t> number) {
    BeReady();
    // Sent with the first statement. A change of one thing keeps out others of the same, and one of
    // everything keeps out all.
    const std::string application = std::to_string(StoreApplicationId);
    beginning_ = {"BEGIN"};
    beginning_.push_back("SELECT pg_advisory_xact_lock" + std::string(number ? "_shared" : "") + '(' +
                         application + ", 0)");
    if (number) {
        beginning_.push_back("SELECT pg_advisory_xact_lock(" + std::to_string(*number) + ')');
    }
    inTransaction_ = true;
    ahead_.clear();
}

bool PostgresConnection::BeginReading() {
    BeReady();
    beginning_ = {"BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"};
    inTransaction_ = true;
    ahead_.clear();
    return false;
}

bool PostgresConnection::EndReading() noexcept {
    readingEnds_ = beginning_.empty() && connection_ != nullptr;
    beginning_.clear();
    inTransaction_ = false;
    ahead_.clear();
    return false;
}

void PostgresConnection::LetGo() {
    if (readingEnds_) {
        std::size_t reached = 0;
        RoundTrip({}, {}, reached);
    }
}

void PostgresConnection::Commit() {
    if (!beginning_.empty()) {
        Rollback(); // of nothing
        return;
    }
    std::size_t reached = 0;
    Committed(RoundTrip({}, Commits(), reached).back());
}

void PostgresConnection::Committed(const Result& result) {
    if (PQcmdStatus(result.get()) != std::string_view(Committing.back())) {
        throw RuntimeError(ErrorNumber::StoreFailure, "The server has taken the change back", PostgresName);
    }
    inTransaction_ = false;
}

void PostgresConnection::Rollback() noexcept {
    try {
        std::size_t reached = 0;
        if (beginning_.empty() && connection_) {
            RoundTrip({}, Ending, reached);
        }
    } catch (const std::exception&) {
        connection_.reset(); // takes it back as well
    }
    beginning_.clear();
    inTransaction_ = false;
}

bool PostgresConnection::HasTable(const std::string& name) {
    BeReady();
    const std::string lower = FoldAscii(name);
    if (!tables_.contains(lower)) {
        const auto statement = Prepare("SELECT to_regclass(:Name) IS NOT NULL");
        const std::array<std::optional<std::string>, 1> parameters = {schema_ + lower};
        statement->Run(parameters);
        if (statement->Field(0) == "t") {
            tables_.emplace(lower, schema_);
        }
    }
    return tables_.contains(lower);
}

std::optional<std::int64_t> PostgresConnection::ChangeMark() {
    // It is for others to connect anew, and to wait for that.
    if (!connection_ || PQstatus(connection_.get()) != CONNECTION_OK || inTransaction_) {
        return std::nullopt;
    }
    if (std::exchange(listens_, connects_) != connects_) {
        std::size_t reached = 0;
        ++heard_; // of whatever was before
        RoundTrip({}, Listening, reached);
    }
    if (PQconsumeInput(connection_.get()) == 0) {
        return std::nullopt;
    }

    struct Free {
        void operator()(PGnotify* notice) const noexcept { PQfreemem(notice); }
    };

    while (const std::unique_ptr<PGnotify, Free> notice{PQnotifies(connection_.get())}) {
        heard_ += notice->be_pid == PQbackendPID(connection_.get()) ? 0 : 1;
    }
    return heard_;
}

std::string PostgresConnection::WithSchema(std::string_view sql) const {
    return Qualified(sql, [this](const std::string& table) {
        const auto known = tables_.find(table);
        return known != tables_.end() ? known->second : schema_;
    });
}

void PostgresConnection::SetVersion(int version) {
    RunScript(("COMMENT ON TABLE Node_AUTO IS '" + VersionComment(version) + '\'').c_str());
    version_ = version;
}

void PostgresConnection::RunScript(const char* sql) {
    BeReady();
    std::size_t reached = 0;
    RoundTrip({}, {}, reached); // what begins the transaction
    ahead_.clear();
    Require(PQexitPipelineMode(connection_.get()));
    Script(WithSchema(ServerTables(sql)).c_str());
    Require(PQenterPipelineMode(connection_.get()));
}

} // namespace KAL_AUTO_Node
