#include "server/PostgresErrors.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

std::string_view Diagnosis(const PGresult* failed, int field) {
    const char* text = PQresultErrorField(failed, field);
    return text != nullptr ? text : std::string_view();
}

// In a message they stand in quotes, tables with the schema that was added.
std::string WithNamesAsWritten(const std::string& text, std::string_view sql) {
    std::string result;
    bool quoted = false;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('"', at), text.size());
        std::string_view piece = std::string_view(text).substr(at, end - at);
        if (quoted && !piece.empty()) {
            piece = AsWritten(sql, piece.substr(piece.find('.') + 1));
        }
        result += piece;
        result += end < text.size() ? "\"" : "";
        quoted = !quoted;
        at = end + 1;
    }
    return result;
}

// The table that a statement writes or, for one that only reads, reads first.
std::string_view TableOf(std::string_view sql) {
    for (const std::string_view word : {"INSERT INTO ", "UPDATE ", "FROM "}) {
        if (const auto at = sql.find(word); at != std::string_view::npos) {
            const auto start = at + word.size();
            return sql.substr(start, sql.find_first_of(" \n(", start) - start);
        }
    }
    return {};
}

// The place of the parameter that the server could not read: "... parameter $3 = 'one'".
std::size_t FailedParameter(std::string_view context) {
    constexpr std::string_view word = "parameter $";
    std::size_t position = 0;
    if (const auto at = context.find(word); at != std::string_view::npos) {
        const char* start = context.data() + at + word.size();
        std::from_chars(start, context.data() + context.size(), position);
    }
    return position;
}

std::string Column(const PGresult* failed, const NumberedStatement& statement) {
    std::string_view table = Diagnosis(failed, PG_DIAG_TABLE_NAME);
    std::string_view column = Diagnosis(failed, PG_DIAG_COLUMN_NAME);
    const std::size_t parameter = FailedParameter(Diagnosis(failed, PG_DIAG_CONTEXT));
    if (parameter > 0 && parameter <= statement.parameters.size()) {
        table = TableOf(statement.sql);
        column = statement.parameters[parameter - 1];
    }
    if (column.empty()) {
        return {};
    }
    std::string name(AsWritten(statement.sql, table));
    name += '.';
    name += AsWritten(statement.sql, column);
    return name;
}

} // namespace

std::string_view StateOf(const PGresult* failed) { return Diagnosis(failed, PG_DIAG_SQLSTATE); }

RuntimeError ErrorOf(const PGresult* failed, const NumberedStatement* statement) {
    static constexpr std::array<std::pair<std::string_view, ErrorNumber>, 4> numbers = {{
        {"23505", ErrorNumber::DuplicateKey},
        {"42501", ErrorNumber::PermissionDenied},
        {"42P07", ErrorNumber::PermissionDenied}, // something else has the table's name
        {"25006", ErrorNumber::PermissionDenied}, // a server that only reads
    }};
    const std::string_view state = StateOf(failed);
    const auto known = std::ranges::find(numbers, state, &std::pair<std::string_view, ErrorNumber>::first);
    const bool duplicate = known != numbers.end() && known->second == ErrorNumber::DuplicateKey;

    std::string text(Diagnosis(failed, PG_DIAG_MESSAGE_PRIMARY));
    if (text.empty()) {
        text = Trimmed(PQresultErrorMessage(failed));
    } else if (statement != nullptr) {
        text = WithNamesAsWritten(text, statement->sql);
    }
    if (const auto detail = Diagnosis(failed, PG_DIAG_MESSAGE_DETAIL); duplicate && !detail.empty()) {
        text += ": ";
        text += detail;
    }
    if (statement != nullptr) {
        if (const std::string column = Column(failed, *statement); !column.empty()) {
            text += " in column ";
            text += column;
        } else if (duplicate) {
            text += " in table ";
            text += AsWritten(statement->sql, Diagnosis(failed, PG_DIAG_TABLE_NAME));
        }
    }
    return {known != numbers.end() ? known->second : ErrorNumber::StoreFailure, text, PostgresName};
}

std::string Trimmed(const char* message) {
    std::string text(message);
    text.erase(text.find_last_not_of(" \r\n") + 1);
    std::erase(text, '\t'); // at the beginning of further lines
    std::ranges::replace(text, '\n', ' ');
    return text;
}

} // namespace KAL_AUTO_Node
