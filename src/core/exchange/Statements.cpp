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

namespace {

std::string Equal(const StoreTable& table, std::span<const std::size_t> columns, const char* between) {
    std::string text;
    for (const std::size_t column : columns) {
        text += text.empty() ? "" : between;
        text += table.columns[column].name;
        text += " = :";
        text += table.columns[column].name;
    }
    return text;
}

std::string MatchingKeyAndBefore(const StoreTable& table, std::span<const std::size_t> columns) {
    std::string text = Matching(table, table.key);
    for (const std::size_t column : columns) {
        const std::string& name = table.columns[column].name;
        text += " AND ";
        text += name;
        text += " IS NOT DISTINCT FROM :Before_";
        text += name;
    }
    return text;
}

} // namespace

std::string Matching(const StoreTable& table, std::span<const std::size_t> columns) {
    return Equal(table, columns, " AND ");
}

std::string UpdateStatement(const StoreTable& table, std::span<const std::size_t> columns) {
    return "UPDATE " + table.name + " SET " + Equal(table, columns, ", ") + " WHERE " +
           MatchingKeyAndBefore(table, columns);
}

std::string RemoveStatement(const StoreTable& table, std::span<const std::size_t> columns) {
    return "DELETE FROM " + table.name + " WHERE " + MatchingKeyAndBefore(table, columns);
}

std::string DeleteStatement(const StoreTable& table, std::span<const std::size_t> columns) {
    return "DELETE FROM " + table.name + " WHERE " + Matching(table, columns);
}

std::string InsertStatement(const StoreTable& table) {
    const auto columns = AllColumns(table);
    return "INSERT INTO " + table.name + " (" + Listed(table, columns) + ") VALUES (" +
           Listed(table, columns, ":") + ") ON CONFLICT DO NOTHING";
}

} // namespace KAL_AUTO_Node
