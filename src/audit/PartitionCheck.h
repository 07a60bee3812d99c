#pragma once

#include "audit/Findings.h"
#include "nodes/RequiredNodes.h"

#include <cstddef>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class History;

struct PartitionFindings {
    std::size_t autoNodes = 0;         // checked, the template among them
    std::size_t registeredNodes = 0;   // of every type
    std::vector<Finding> findings;     // by holder: type, number
    std::vector<RequiredNode> missing; // each node that does not exist, once
};

// Looks at every node of a partition and at what refers to it, with the rules that the editor goes by.
// Nothing is written. The store is read once through; what others change meanwhile is seen or not.
[[nodiscard]] PartitionFindings CheckPartition(DataBase& dataBase, History& history, Partition partition);

} // namespace KAL_AUTO_Node
