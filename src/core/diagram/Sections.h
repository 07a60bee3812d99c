#pragma once

#include "diagram/CallFlow.h"

#include <map>
#include <set>
#include <vector>

namespace KAL_AUTO_Node {

// A part of a call flow small enough to be drawn by itself.
struct Section {
    NodeKey first; // the node through which it is entered
    std::vector<NodeKey> nodes;
};

// How the AUTO nodes that are shown, and the nodes of other types that lead to them, hang together. The flow
// is followed from one node after the other, breadth first, which gives each node one that it hangs on; where
// too many hang together, branches are cut off.
class Outline {
  public:
    // Begins with the AUTO node of that number where it is shown, then goes by numbers, so that a main menu,
    // which everything leads back to, comes before its parts.
    Outline(const CallFlow& flow, const std::set<int>& shown, int first);

    [[nodiscard]] const std::vector<Section>& Sections() const { return sections_; }

    [[nodiscard]] bool Has(const NodeKey& node) const { return places_.contains(node); }

    // Whether a way between two nodes is drawn as a line: within a section, and neither back to what the node
    // hangs on nor as one of the many that lead to the same node.
    [[nodiscard]] bool IsLine(const NodeKey& from, const NodeKey& to) const;

  private:
    struct Place {
        NodeKey parent;
        bool hangs = false; // on the parent
        std::vector<NodeKey> children;
        std::vector<NodeKey> onwards;
        std::set<NodeKey> comeFrom;
        std::size_t section = 0;
    };

    // Returns the nodes of other types at which a call comes in from elsewhere: what is shown leads to none.
    std::vector<NodeKey> FindPlaces(const CallFlow& flow, const std::set<int>& shown);
    void FindOnwards(const CallFlow& flow, const std::set<int>& shown, std::vector<NodeKey> found);
    void Follow(const NodeKey& start, std::set<NodeKey>& reached);
    void Cut();

    std::map<NodeKey, Place> places_;
    std::vector<NodeKey> order_; // each after what it hangs on
    std::vector<Section> sections_;
};

// Of a section, one that has any.
struct AutoNodes {
    int first = 0; // of those through which it is entered
    std::set<int> nodes;
};

// In the order of the sections in which the AUTO nodes that are shown are drawn together.
[[nodiscard]] std::vector<AutoNodes> AutoNodesBySection(const Outline& outline);
[[nodiscard]] std::vector<AutoNodes> AutoNodesBySection(const CallFlow& flow, const std::set<int>& shown);

} // namespace KAL_AUTO_Node
