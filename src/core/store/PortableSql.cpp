#include "store/PortableSql.h"

#include "platform/FoldCase.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

bool SameLetter(char a, char b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return lower(a) == lower(b);
}

bool InName(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

} // namespace

NumberedStatement Numbered(std::string_view sql) {
    constexpr std::string_view prefix = "Given_";
    NumberedStatement numbered;
    char quote = '\0'; // of the text that the position is in
    for (std::size_t i = 0; i < sql.size(); ++i) {
        const char c = sql[i];
        if (quote != '\0' || c == '\'' || c == '"') {
            quote = quote == '\0' ? c : (c == quote ? '\0' : quote);
        } else if (c == ':' && i + 1 < sql.size() && InName(sql[i + 1])) {
            const auto end =
                std::find_if_not(sql.begin() + static_cast<std::ptrdiff_t>(i) + 1, sql.end(), InName);
            std::string name(sql.begin() + static_cast<std::ptrdiff_t>(i) + 1, end);
            i += name.size();
            if (name.starts_with(prefix)) {
                name.erase(0, prefix.size());
            }
            const auto known = std::ranges::find(numbered.parameters, name);
            numbered.sql += '$';
            numbered.sql += std::to_string(known - numbered.parameters.begin() + 1);
            if (known == numbered.parameters.end()) {
                numbered.parameters.push_back(std::move(name));
            }
            continue;
        }
        numbered.sql += c;
    }
    return numbered;
}

std::string Qualified(std::string_view sql,
                      const std::function<std::string(const std::string& table)>& schemaOf) {
    static constexpr std::array<std::string_view, 6> before = {"FROM", "INTO",  "JOIN",
                                                               "ON",   "TABLE", "UPDATE"};
    static constexpr std::array<std::string_view, 3> skipped = {"IF", "NOT", "EXISTS"};
    static constexpr std::array<std::string_view, 3> beginnings = {"node_", "detail_", "sr_node_"};
    std::string qualified;
    std::string_view previous;
    for (std::size_t at = 0; at < sql.size();) {
        std::size_t end = at + 1;
        if (sql[at] == '\'' || sql[at] == '"') {
            end = std::min(sql.find(sql[at], at + 1), sql.size() - 1) + 1;
        } else if (sql.substr(at).starts_with("--")) {
            end = std::min(sql.find('\n', at), sql.size());
        } else if (InName(sql[at])) {
            const auto* const start = sql.data() + at;
            end = at +
                  static_cast<std::size_t>(std::find_if_not(start, sql.data() + sql.size(), InName) - start);
            const std::string table = FoldAscii(sql.substr(at, end - at));
            if (std::ranges::find(before, previous) != before.end() &&
                std::ranges::any_of(beginnings, [&](auto word) { return table.starts_with(word); })) {
                qualified += schemaOf(table);
            }
            // TABLE IF NOT EXISTS
            previous =
                previous == "TABLE" && std::ranges::find(skipped, sql.substr(at, end - at)) != skipped.end()
                    ? previous
                    : sql.substr(at, end - at);
        } else if (std::isspace(static_cast<unsigned char>(sql[at])) == 0) {
            previous = {};
        }
        qualified.append(sql, at, end - at);
        at = end;
    }
    return qualified;
}

std::string_view AsWritten(std::string_view sql, std::string_view name) {
    const auto found = std::search(sql.begin(), sql.end(), name.begin(), name.end(), SameLetter);
    return found == sql.end() ? name : sql.substr(static_cast<std::size_t>(found - sql.begin()), name.size());
}

std::string ServerTables(std::string_view script) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 3> words = {
        {{") STRICT, WITHOUT ROWID;", ");"}, {") STRICT;", ");"}, {" INTEGER", " BIGINT"}}};
    std::string sql(script);
    for (const auto& [here, there] : words) {
        for (auto at = sql.find(here); at != std::string::npos; at = sql.find(here, at)) {
            sql.replace(at, here.size(), there);
        }
    }
    return sql;
}

} // namespace KAL_AUTO_Node
