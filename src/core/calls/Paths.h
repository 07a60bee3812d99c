#pragma once

#include "calls/CallMap.h"

#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// A step on a way, and the node to which it leads.
struct PathStep {
    std::string step; // as steps are written
    NodeKey node;
};

// The shortest ways from an AUTO node to another node.
struct PathsFrom {
    int from = 0;
    std::optional<std::vector<PathStep>> certain;
    // Of steps that may lead on so; told only where it is shorter, or there is no certain way.
    std::optional<std::vector<PathStep>> possible;
};

// From the node of that number, else from each at which calls may enter, by number, where there is a way. A
// message is got to by references under all of its types. Takes time by the rows of the partition.
[[nodiscard]] std::vector<PathsFrom> FindPaths(const CallMap& map, const TypeNames& names, const NodeKey& to,
                                               std::optional<int> from = std::nullopt);

} // namespace KAL_AUTO_Node
