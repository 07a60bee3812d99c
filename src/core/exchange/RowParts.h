#pragma once

#include "exchange/Tables.h"
#include "nodes/Merging.h"

#include <cstddef>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// What two people can change in a row of a table without being in each other's way: a column, or the columns
// of one reference.
struct RowPart {
    std::string name; // "label"
    std::vector<std::size_t> columns;
};

// All columns beyond the key.
[[nodiscard]] std::vector<RowPart> PartsOf(const StoreTable& table);

// The part's values in a row, in words.
[[nodiscard]] std::string PartText(const RowPart& part, const StoreTable& table, const StoreRow& row);

// Whether its rows are lists of nodes; how they are merged, where the last column of the key is a row's
// place; what such a list, or else a row, is called.
[[nodiscard]] bool HoldsLists(const StoreTable& table);
[[nodiscard]] ListKind KindOf(const StoreTable& table);
[[nodiscard]] ListedRow ListedOf(const StoreTable& table, const StoreRow& row);
[[nodiscard]] std::string RowsName(const StoreTable& table);

// The node that a row of the key is one of: configuration, partition, type, number. Rows that are no node's
// have a key of their own each.
[[nodiscard]] bool HoldsNodes(const StoreTable& table);
[[nodiscard]] StoreKey NodeKeyOf(const StoreTable& table, const StoreKey& key);

// The column of the day on which a node was changed, of which the later one of two is right.
[[nodiscard]] bool IsDayOfChange(const StoreColumn& column);

} // namespace KAL_AUTO_Node
