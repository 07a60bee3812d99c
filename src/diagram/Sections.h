#pragma once

#include "diagram/CallFlow.h"

#include <set>
#include <unordered_map>
#include <vector>

namespace KAL_AUTO_Node {

// A part of a call flow small enough to be drawn by itself.
struct Section {
    int first = 0; // the node through which it is entered
    std::vector<int> numbers;
};

// How the AUTO nodes that are shown hang together. The flow is followed from one node after the other,
// breadth first, which gives each node one that it hangs on; where too many hang together, branches are cut
// off.
class Outline {
  public:
    // Begins with the node of that number where it is shown, then goes by numbers, so that a main menu, which
    // everything leads back to, comes before its parts.
    Outline(const CallFlow& flow, const std::set<int>& shown, int first);

    [[nodiscard]] const std::vector<Section>& Sections() const { return sections_; }

    // Whether a way between two nodes is drawn as a line: within a section, and not as one of the many that
    // lead back to the same node.
    [[nodiscard]] bool IsLine(int from, int to) const;

  private:
    struct Place {
        int parent = 0;
        bool hangs = false; // on the parent
        std::vector<int> children;
        std::set<int> comeFrom;
        std::size_t section = 0;
    };

    void Cut();

    std::unordered_map<int, Place> places_;
    std::vector<int> order_; // each after what it hangs on
    std::vector<Section> sections_;
};

} // namespace KAL_AUTO_Node
