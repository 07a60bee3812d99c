#pragma once

#include "calls/CallMap.h"

#include <string>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// Something that callers notice of a change to a node.
struct CallChange {
    // "entries", the step of an exception, "prompts", a setting's name, or "node"; of nodes of other types
    // the place of a reference.
    std::string what;
    std::vector<std::pair<std::string, std::string>> entries; // from, to; of entries only
    // How it was and how it is then, or what is said instead.
    std::string before;
    std::string after;
    std::string says;

    // "entries 40-49: LIST 2 → nowhere (Invalid)"
    [[nodiscard]] std::string Text() const;
};

// What of a node's entries leads elsewhere, those that change alike together, in the order of the first. What
// no action holds before and after is not told of entries where only Invalid leads elsewhere, nor of entries
// of a length that the node takes only before or only after. Takes n log n time by the actions of both.
[[nodiscard]] std::vector<CallChange> CompareEntries(const Menu& before, const Menu& after);

// All that callers notice; nothing exactly where they notice nothing. Nothing stands for no node.
[[nodiscard]] std::vector<CallChange> CompareCalls(const Menu* before, const Menu* after);

struct NodeCallChanges {
    NodeKey node;
    std::vector<CallChange> changes;
};

// Of a partition that was and is then: of the AUTO nodes by number, with those that no caller gets to any
// more, from where calls entered before, and those that callers get to now; then of the references of other
// nodes.
[[nodiscard]] std::vector<NodeCallChanges> CompareCalls(const CallMap& before, const CallMap& after);

} // namespace KAL_AUTO_Node
