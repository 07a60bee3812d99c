#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"
#include "nodes/Slots.h"

#include <functional>

namespace KAL_AUTO_Node {

class DataBase;

// Hands over the partition's AUTO nodes whole, one by one, in the order of their numbers, the template among
// them; and, of prompts and actions whose node does not exist, their list, their node's number and how many
// there are. What is handed over is that only until the procedure returns. The store is read once through,
// however many nodes there are, and no more than one node is kept.
void ReadWholeAutoNodes(DataBase& dataBase, Partition partition,
                        const std::function<void(int number, const AutoNode& node)>& take,
                        const std::function<void(Slot list, int number, int rows)>& takeOrphans);

} // namespace KAL_AUTO_Node
