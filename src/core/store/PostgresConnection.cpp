#include "store/PostgresConnection.h"

#include "store/PostgresErrors.h"
#include "store/PostgresStatement.h"
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
// window that hangs in the middle of a transaction keeps nobody from saving. Then, in the same answer, what
// is there: the tables, and what says which version of them.
constexpr const char* SetUpSession =
    "SET lock_timeout = '1s'; SET statement_timeout = '10s'; SET idle_in_transaction_session_timeout = '30s';"
    "SELECT relname, CASE relname WHEN 'node_auto' THEN obj_description(oid, 'pg_class') END FROM pg_class"
    " WHERE relkind IN ('r', 'v', 'p', 'f', 'm') AND relnamespace = ANY "
    "(current_schemas(false)::regnamespace[])"
    " AND pg_table_is_visible(oid)";

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

} // namespace

PostgresConnection::PostgresConnection(std::string uri, Wanted wanted)
    : uri_(std::move(uri)), wanted_(wanted) {
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
        const std::string why = Trimmed(PQerrorMessage(connection));
        connection_.reset();
        throw RuntimeError(ErrorNumber::StoreFailure, why, PostgresName);
    }
    place_ = std::string("server '") + OrEmpty(PQhost(connection)) + ':' + OrEmpty(PQport(connection)) +
             "', database '" + OrEmpty(PQdb(connection)) + '\'';
    PQsetNoticeReceiver(
        connection, [](void*, const PGresult*) {}, nullptr);
    try {
        SetUp();
    } catch (...) {
        connection_.reset();
        throw;
    }
}

void PostgresConnection::SetUp() {
    Require(PQsetnonblocking(connection_.get(), 1) == 0 ? 1 : 0);
    const Result found = Script(SetUpSession);
    std::string comment;
    for (int row = 0; row < PQntuples(found.get()); ++row) {
        tables_.insert(PQgetvalue(found.get(), row, 0));
        comment += PQgetvalue(found.get(), row, 1);
    }
    if (wanted_ == Wanted::Store && !tables_.contains("node_auto") &&
        !tables_.contains("node_general_pool")) {
        throw RuntimeError(ErrorNumber::StoreNotRecognized,
                           "There is no store on " + place_ +
                               "; \"auto-node init --server\" makes one, in an empty database",
                           PostgresName);
    }
    RequireKnownVersion(VersionIn(comment), place_);
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
        throw RuntimeError(ErrorNumber::StoreFailure, "The change was lost with the connection to the server",
                           PostgresName);
    }
    Connect();
}

std::unique_ptr<Statement> PostgresConnection::Prepare(const std::string& sql) {
    return std::make_unique<PostgresStatement>(*this, sql);
}

void PostgresConnection::Begin(std::optional<std::int64_t> number) {
    BeReady();
    // Sent with the first statement. A change of one thing keeps out others of the same, and one of
    // everything keeps out all. Each statement has to see what was there when the lock was got, whatever the
    // server's own default.
    const std::string application = std::to_string(StoreApplicationId);
    beginning_ = {"BEGIN ISOLATION LEVEL READ COMMITTED"};
    beginning_.push_back("SELECT pg_advisory_xact_lock" + std::string(number ? "_shared" : "") + '(' +
                         application + ", 0)");
    if (number) {
        beginning_.push_back("SELECT pg_advisory_xact_lock(" + std::to_string(*number) + ')');
    }
    inTransaction_ = true;
    ahead_.clear();
}

void PostgresConnection::Commit() {
    if (!beginning_.empty()) {
        Rollback(); // of nothing
        return;
    }
    std::size_t reached = 0;
    Committed(Exchange({}, Committing, reached).back());
}

void PostgresConnection::Committed(const Result& result) {
    if (PQcmdStatus(result.get()) != std::string_view(Committing.front())) {
        throw RuntimeError(ErrorNumber::StoreFailure, "The server has taken the change back", PostgresName);
    }
    inTransaction_ = false;
}

void PostgresConnection::Rollback() noexcept {
    try {
        std::size_t reached = 0;
        if (beginning_.empty() && connection_) {
            Exchange({}, std::array{"ROLLBACK"}, reached);
        }
    } catch (const std::exception&) {
        connection_.reset(); // takes it back as well
    }
    beginning_.clear();
    inTransaction_ = false;
}

bool PostgresConnection::HasTable(const std::string& name) {
    BeReady();
    std::string lower = name;
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (!tables_.contains(lower)) {
        const auto statement = Prepare("SELECT to_regclass(:Name) IS NOT NULL");
        const std::array<std::optional<std::string>, 1> parameters = {lower};
        statement->Run(parameters);
        if (statement->Field(0) == "t") {
            tables_.insert(lower);
        }
    }
    return tables_.contains(lower);
}

void PostgresConnection::RunScript(const char* sql) {
    BeReady();
    std::size_t reached = 0;
    Exchange({}, {}, reached); // what begins the transaction
    ahead_.clear();
    Require(PQexitPipelineMode(connection_.get()));
    Script(ServerTables(sql).c_str());
    Require(PQenterPipelineMode(connection_.get()));
}

} // namespace KAL_AUTO_Node
