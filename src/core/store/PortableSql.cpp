#include "store/PortableSql.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

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
