#pragma once

#include "exchange/Tables.h"
#include "nodes/Identity.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;

// The rows of nodes of every type, beside the named commands.

// A table in which nodes of a type have rows.
struct NodeTable {
    const StoreTable* table;
    std::size_t number; // the column of the node's number, by position

    // Whether a node has one row there, by which it is a node of the type.
    [[nodiscard]] bool IsRecord() const { return table->name.starts_with("Node_"); }
};

// Of the type's nodes, the table of their records first; none where the store has no tables for the type.
[[nodiscard]] std::vector<NodeTable> TablesOf(int typeID);

// What the store has of a node.
struct NodeTraces {
    bool registered = false;
    bool recorded = false;
    bool detailed = false; // detail rows

    [[nodiscard]] bool Any() const { return registered || recorded || detailed; }

    [[nodiscard]] bool IsWhole() const { return registered && recorded; }
};

// One query, of a type that has tables.
[[nodiscard]] NodeTraces ReadTraces(DataBase& dataBase, Partition partition, const NodeKey& node);

// The rows of one table that are the node's.
[[nodiscard]] std::vector<StoreRow> ReadRows(DataBase& dataBase, const NodeTable& table, Partition partition,
                                             const NodeKey& node);

// Parts of a transaction, each of which travels to a server in one go. Rows of the number are there for the
// first and not for the second.
void DeleteRows(DataBase& dataBase, Partition partition, const NodeKey& node);
void RenumberRows(DataBase& dataBase, Partition partition, const NodeKey& node, int number,
                  const std::string& date);
// Where it has any.
void LabelRows(DataBase& dataBase, Partition partition, const NodeKey& node, const std::string& label,
               const std::string& date);

} // namespace KAL_AUTO_Node
