#include "exchange/Statements.h"

#include <numeric>

namespace KAL_AUTO_Node {

std::vector<std::size_t> AllColumns(const StoreTable& table) {
    std::vector<std::size_t> columns(table.columns.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    return columns;
}

std::string Listed(const StoreTable& table, std::span<const std::size_t> columns, const char* prefix) {
    std::string text;
    for (const std::size_t column : columns) {
        text += text.empty() ? "" : ", ";
        text += prefix;
        text += table.columns[column].name;
    }
    return text;
}

std::string Matching(const StoreTable& table, std::span<const std::size_t> columns) {
    std::string text;
    for (const std::size_t column : columns) {
        text += text.empty() ? "" : " AND ";
        text += table.columns[column].name;
        text += " = :";
        text += table.columns[column].name;
    }
    return text;
}

std::string InsertStatement(const StoreTable& table, std::span<const std::size_t> columns) {
    return "INSERT INTO " + table.name + " (" + Listed(table, columns) + ") VALUES (" +
           Listed(table, columns, ":") + ") ON CONFLICT DO NOTHING";
}

} // namespace KAL_AUTO_Node
