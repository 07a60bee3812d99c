#pragma once

#include "audit/Repoint.h"
#include "upkeep/CopyNode.h"

#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

struct RemoveOrder {
    Partition partition;
    NodeKey node;
    std::optional<NodeKey> instead; // takes its place everywhere first
    bool forget = false;            // also a node that no history keeps
};

// Takes a node away with its detail rows and its row of the register, in one step. What its own rows refer to
// does not hold it; what others refer to does, unless another node takes its place. An AUTO node is kept in
// the history, which brings it back whole; a node of another type is gone. Nothing is changed where the plan
// has obstacles.
RepointPlan RemoveNode(DataBase& dataBase, History& history, const TypeNames& names, const RemoveOrder& order,
                       const std::string& date, Carry carry);

// Gives a node another number, and lets all that refers to it follow, in one step. The number has to be free,
// as for a copy. A message goes on playing its file. The plan tells what follows.
RepointPlan MoveNode(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
                     const NodeKey& node, int number, const std::string& date, Carry carry);

} // namespace KAL_AUTO_Node
