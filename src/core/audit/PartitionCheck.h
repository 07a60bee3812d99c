#pragma once

#include "audit/Findings.h"
#include "nodes/RequiredNodes.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class History;
struct AutoNode;
struct StoredReference;

struct PartitionFindings {
    std::size_t autoNodes = 0;         // checked, the template among them
    std::size_t registeredNodes = 0;   // of every type
    std::vector<Finding> findings;     // by holder: type, number
    std::vector<RequiredNode> missing; // each node that does not exist, once
};

// Every partition that has a row of a node, also where no node is whole.
[[nodiscard]] std::vector<Partition> PartitionsWithRows(DataBase& dataBase);

// What a check reads, for those who need it as well: what is handed over is there until they return.
struct CheckReader {
    std::function<void(const NodeKey& node, std::string_view type, const std::string& label)> takeRegistered =
        [](const NodeKey&, std::string_view, const std::string&) {};
    std::function<void(int number, const AutoNode& node)> takeAutoNode = [](int, const AutoNode&) {};
    // Of a node of another type, with the ID of the type that it refers to; only references that are one.
    std::function<void(const StoredReference& reference, int typeID)> takeReference =
        [](const StoredReference&, int) {};
};

// Looks at every node of a partition and at what refers to it, with the rules that the editor goes by.
// Nothing is written. The store is read once through; what others change meanwhile is seen or not.
[[nodiscard]] PartitionFindings CheckPartition(DataBase& dataBase, History& history, Partition partition,
                                               const CheckReader& reader = {});

} // namespace KAL_AUTO_Node
