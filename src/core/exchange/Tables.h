#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// The system's tables, as the store's schema has them: what goes from one store into another.

struct StoreColumn {
    std::string name;
    bool number = false;   // a whole number of 32 bits; else a text
    bool required = false; // never Null
};

// A row's fields stand in the order of its table's columns; nothing stands for Null.
using StoreRow = std::vector<std::optional<std::string>>;

// The numbers that tell a row from all others of its table, in the order of the key's columns; 0 behind them.
using StoreKey = std::array<std::int64_t, 4>;

struct StoreTable {
    std::string name;
    std::vector<StoreColumn> columns;
    std::vector<std::size_t> key; // positions of the columns that tell a row from all others; all are numbers
    bool partitioned = false;     // the key begins with configuration and partition
};

// In the order of the schema.
[[nodiscard]] std::span<const StoreTable> StoreTables();

// By name, whatever its case; nothing where there is none.
[[nodiscard]] const StoreTable* FindTable(std::string_view name);
[[nodiscard]] std::optional<std::size_t> FindColumn(const StoreTable& table, std::string_view name);

// "ConfigID 1, PartID 2, NodeNumber 3", for a person.
[[nodiscard]] std::string KeyText(const StoreTable& table, const StoreRow& row);

// The row's key, to tell rows in their order.
[[nodiscard]] StoreKey RowKeyOf(const StoreTable& table, const StoreRow& row);

// Why the column cannot hold the value, in words; nothing where it can. A number is brought into its one
// form.
[[nodiscard]] std::optional<std::string> WhyNot(const StoreColumn& column, std::optional<std::string>& value);

} // namespace KAL_AUTO_Node
