#pragma once

#include "nodes/Identity.h"
#include "nodes/References.h"

#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class History;

struct NodeID {
    int typeID = 0;
    int number = 0;
};

// All that has to change so that another node takes a node's place, and what stands in the way.
struct RepointPlan {
    struct Change {
        StoredReference from;
        int typeID = 0; // what it becomes; a message is referred to under the same of its types as before
        std::string type;
    };

    std::vector<Change> changes;        // in the order of their holders
    std::vector<std::string> obstacles; // each for people; none where it can be done
};

// Reads only. The node whose place is taken need not exist, the new one has to. What the places of AUTO nodes
// may refer to is known one by one; of nodes of other types it is only known which types they contain
// somewhere, so that a type is new there only where all their places offer it.
[[nodiscard]] RepointPlan PlanRepoint(DataBase& dataBase, History& history, const TypeNames& names,
                                      Partition partition, NodeID from, NodeID to);

// Plans it and changes everything in one step, for others as for the disk; of each AUTO node the step is a
// version of its history. Nothing is changed where the plan has obstacles. The date is today's as dates are
// stored.
RepointPlan Repoint(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
                    NodeID from, NodeID to, const std::string& date);

} // namespace KAL_AUTO_Node
