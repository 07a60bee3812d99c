#include "bench/Recording.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

struct Recorded {
    std::string statement;
    std::string expanded; // with values
};

std::vector<Recorded> recorded;
std::vector<Recorded> ofHistory;

// What a floor of the node alone leaves out: a save's mark, and what is looked up of earlier ones.
bool IsOfHistory(std::string_view sql) {
    constexpr std::array<std::string_view, 7> words = {"Node_AUTO_Version", "Node_Creation", "sqlite_master",
                                                       "schema_version",    "BEGIN",         "COMMIT",
                                                       "ROLLBACK"};
    return std::ranges::any_of(words, [&](std::string_view word) { return sql.find(word) != sql.npos; });
}

int Note(unsigned /*event*/, void* /*context*/, void* statement, void* /*sql*/) {
    const char* sql = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
    char* expanded = sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement));
    (IsOfHistory(sql) ? ofHistory : recorded).push_back({sql, expanded == nullptr ? "" : expanded});
    sqlite3_free(expanded);
    return 0;
}

int Attach(sqlite3* database, char** /*error*/, const sqlite3_api_routines* /*api*/) {
    return sqlite3_trace_v2(database, SQLITE_TRACE_STMT, &Note, nullptr);
}

// The engine's way to name an entry point.
const auto Entry = reinterpret_cast<void (*)()>(&Attach);

// The quoted texts of a statement.
std::vector<std::string> Values(std::string_view sql) {
    std::vector<std::string> values;
    for (auto at = sql.find('\''); at < sql.size(); at = sql.find('\'', at)) {
        std::string& value = values.emplace_back();
        for (++at; at < sql.size() && (sql[at] != '\'' || sql.substr(at).starts_with("''")); ++at) {
            at += sql[at] == '\'' ? 1 : 0;
            value += sql[at];
        }
        ++at;
    }
    return values;
}

std::vector<Performed> CommandsIn(const std::vector<Recorded>& all) {
    std::vector<Performed> commands;
    for (const Recorded& each : all) {
        for (std::size_t i = 0; i < CommandCount; ++i) {
            if (const auto command = static_cast<Command>(i); CommandText(command) == each.statement) {
                commands.push_back({command, Values(each.expanded)});
            }
        }
    }
    return commands;
}

} // namespace

Recording::Recording() { sqlite3_auto_extension(Entry); }

Recording::~Recording() {
    sqlite3_cancel_auto_extension(Entry);
    recorded.clear();
    ofHistory.clear();
}

std::vector<std::string> Recording::Statements() {
    ofHistory.clear();
    std::vector<std::string> statements;
    for (Recorded& each : std::exchange(recorded, {})) {
        statements.push_back(std::move(each.expanded));
    }
    return statements;
}

std::vector<Performed> Recording::Commands() { return CommandsIn(std::exchange(recorded, {})); }

std::vector<Performed> Recording::HistoryCommands() { return CommandsIn(std::exchange(ofHistory, {})); }

} // namespace KAL_AUTO_Node
