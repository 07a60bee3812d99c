#pragma once

#include "nodes/Identity.h"

#include <set>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// A node that has to exist for a reference to lead somewhere.
struct RequiredNode {
    std::string name; // as it is shown
    NodeKey key;
};

// The nodes that references require, each once, in the order in which they were first referred to.
class RequiredNodes {
  public:
    // Adds the node of a reference unless it refers to none or is there already: a name that begins with the
    // new one's, whatever the case, counts as that node. A reference to a message requires the message.
    void Add(std::string display, const NodeKey& node);

    [[nodiscard]] const std::vector<RequiredNode>& Nodes() const { return nodes_; }

  private:
    std::set<std::string> names_; // without case
    std::vector<RequiredNode> nodes_;
};

} // namespace KAL_AUTO_Node
