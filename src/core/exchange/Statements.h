#pragma once

#include "exchange/Tables.h"

#include <span>
#include <string>

namespace KAL_AUTO_Node {

// Statements on one of the tables. Parameters stand in the order of the columns that they are for.

// Inserts a row. Leaves one alone whose key is there already; it counts as not written.
[[nodiscard]] std::string InsertStatement(const StoreTable& table);

// Sets those columns of the row of a key, where it holds what it held: then come the key's columns, and those
// columns as they were.
[[nodiscard]] std::string UpdateStatement(const StoreTable& table, std::span<const std::size_t> columns);

// Deletes the row of a key, likewise: first the key's columns, then those.
[[nodiscard]] std::string RemoveStatement(const StoreTable& table, std::span<const std::size_t> columns);

// Deletes the rows with those columns.
[[nodiscard]] std::string DeleteStatement(const StoreTable& table, std::span<const std::size_t> columns);

// Positions of all columns.
[[nodiscard]] std::vector<std::size_t> AllColumns(const StoreTable& table);

// "ConfigID = :ConfigID AND PartID = :PartID"
[[nodiscard]] std::string Matching(const StoreTable& table, std::span<const std::size_t> columns);

// "ConfigID, PartID"; with another text between them and before each.
[[nodiscard]] std::string Listed(const StoreTable& table, std::span<const std::size_t> columns,
                                 const char* prefix = "");

} // namespace KAL_AUTO_Node
