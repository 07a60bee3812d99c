#pragma once

#include "exchange/Tables.h"
#include "nodes/Identity.h"

#include <optional>
#include <string>

namespace KAL_AUTO_Node::Exchange {

// The pieces that the text form of docs/exchange.md is written in. Between rows, and between tables, comes
// RowEnd.

inline constexpr const char* RowEnd = ",\n";
inline constexpr const char* TableEnd = "\n]";
inline constexpr const char* End = "\n}}\n";

// Up to the first table's name.
[[nodiscard]] std::string Head(std::optional<Partition> scope);

// Up to the first row.
[[nodiscard]] std::string TableHead(const StoreTable& table);

// Appends a row, whose values the columns can hold.
void AppendRow(std::string& text, const StoreTable& table, const StoreRow& row);

} // namespace KAL_AUTO_Node::Exchange
