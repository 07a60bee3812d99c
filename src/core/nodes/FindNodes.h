#pragma once

#include "nodes/References.h"

#include <cstddef>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// A registered node that was looked for.
struct FoundNode {
    NodeKey node;
    std::string label;
    std::size_t uses = 0; // references to it
};

// The nodes of every type of which each word of a text is in the label, or is the number or the type's name,
// whatever the case; in the order of types and numbers.
[[nodiscard]] std::vector<FoundNode> FindNodes(DataBase& dataBase, Partition partition,
                                               const TypeNames& names, const std::string& text);

} // namespace KAL_AUTO_Node
