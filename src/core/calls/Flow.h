#pragma once

#include "nodes/AutoNode.h"

#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// How the AUTO nodes of a partition lead to one another, by their numbers.
class Flow {
  public:
    void Add(int number, const AutoNode& node);

    // Some node of another type refers to this one.
    void AddReferenceTo(int number) { referredTo_.insert(number); }

    // And a call may go on from there to this one.
    void AddWayTo(int number) { ledTo_.insert(number); }

    // In no order, nodes of which every exception and action leads to themselves or to nodes of which the
    // same holds, or nowhere. Nodes of other types lead on, and so do those that do not exist: what comes
    // after them is not known here.
    [[nodiscard]] std::vector<int> WithoutWayOut() const;

    // In no order, nodes that none but themselves refers to.
    [[nodiscard]] std::vector<int> Unreferenced() const;

    // In their order, nodes at which calls may enter: those, and those to which nodes of other types lead; no
    // template.
    [[nodiscard]] std::vector<int> Entries() const;

  private:
    std::unordered_map<int, bool> nodes_;    // and whether they lead to something other than AUTO nodes
    std::vector<std::pair<int, int>> edges_; // from, to
    std::unordered_set<int> referredTo_;
    std::unordered_set<int> ledTo_;
};

} // namespace KAL_AUTO_Node
