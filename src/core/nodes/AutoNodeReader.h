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
    AutoNodeReader(DataBase& dataBase, Partition partition, std::int16_t number, Labels labels)
        : dataBase_(dataBase), partition_(partition), number_(number), labels_(labels) {}

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
    Partition partition_;
    std::int16_t number_;
    Labels labels_;
    std::optional<ResultSet> record_;
};

// The whole node, or nothing where there is none.
[[nodiscard]] std::optional<AutoNode> ReadAutoNode(DataBase& dataBase, Partition partition,
                                                   std::int16_t number, Labels labels = Labels::Leave);

// Whether the partition has an AUTO node of that number.
[[nodiscard]] bool AutoNodeExists(DataBase& dataBase, Partition partition, std::int16_t number);

// The label of a node of any type as the register has it; empty where it has none.
[[nodiscard]] std::string LabelOf(DataBase& dataBase, Partition partition, int typeID, int number);

} // namespace KAL_AUTO_Node
