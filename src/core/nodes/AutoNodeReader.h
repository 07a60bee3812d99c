#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"
#include "store/DataBase.h"

#include <cstdint>
#include <optional>

namespace KAL_AUTO_Node {

// Reads one AUTO node, step by step in this order. Each step fills its part of the node row by row, so that
// what was read before an error is there.
class AutoNodeReader {
  public:
    // The labels are those of the nodes referred to. The data base outlives the reader.
    AutoNodeReader(DataBase& dataBase, const NodePlace& place, Labels labels)
        : dataBase_(dataBase), place_(place), labels_(labels) {}

    // The node's own record but for the branches. False where there is no such node.
    [[nodiscard]] bool ReadRecord(AutoNode& node);
    void ReadPrompts(AutoNode& node);
    void ReadActions(AutoNode& node);
    // One branch, by its position, of the record read.
    void ReadBranch(AutoNode& node, std::size_t branch);

  private:
    [[nodiscard]] int LabelledType(int typeID) const;
    void ReadLabel(Reference& reference);
    template <class Columns, class Item>
    void ReadItems(Command command, std::vector<Item>& items);

    DataBase& dataBase_;
    NodePlace place_;
    Labels labels_;
    std::optional<ResultSet> record_;
};

// The whole node, or nothing where there is none.
[[nodiscard]] std::optional<AutoNode> ReadAutoNode(DataBase& dataBase, const NodePlace& place,
                                                   Labels labels = Labels::Leave);

// The labels of the nodes that one refers to, under the types of the references.
void ReadLabels(DataBase& dataBase, Partition partition, AutoNode& node);

// Whether there is an AUTO node.
[[nodiscard]] bool AutoNodeExists(DataBase& dataBase, const NodePlace& place);

// The label of a node of any type as the register has it; empty where it has none.
[[nodiscard]] std::string LabelOf(DataBase& dataBase, Partition partition, const NodeKey& node);

} // namespace KAL_AUTO_Node
