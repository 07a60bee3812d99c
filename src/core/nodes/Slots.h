#pragma once

#include "nodes/NodeLists.h"
#include "nodes/NodeTypes.h"

#include <array>
#include <cstddef>

namespace KAL_AUTO_Node {

// The slots of an AUTO node: the places from which it refers to other nodes.
enum class Slot : std::size_t { Prompts, Actions, Timeout, Invalid, Abort, Star, Pound };

struct SlotSet {
    int setID; // the set of node types that may be referred to from here
    // Those of the set that have no numbers.
    Collection<std::string> NodeLists::*notAvailable;
    // Types without a stored limit are offered only where message nodes have numbers.
    bool unlimitedNeedMessages = false;
};

inline constexpr std::array<SlotSet, 7> SlotSets = {{
    {7, &NodeLists::NotAvailablePromptsNode},
    {6, &NodeLists::NotAvailableActionsNode, true},
    {1, &NodeLists::NotAvailableTimeoutNode},
    {3, &NodeLists::NotAvailableInvalidNode},
    {5, &NodeLists::NotAvailableAbortNode},
    {8, &NodeLists::NotAvailableStarNode},
    {9, &NodeLists::NotAvailablePoundNode},
}};

[[nodiscard]] constexpr const SlotSet& SetOf(Slot slot) { return SlotSets[static_cast<std::size_t>(slot)]; }

// The type whose references from a place carry no node number.
[[nodiscard]] constexpr int NumberlessTypeOf(Slot slot) {
    return slot == Slot::Prompts || slot == Slot::Actions ? NumberlessType : NumberlessExceptionType;
}

// The five exception branches in the order of their rows.
struct Branch {
    Slot slot;
    const char* label;  // as it is shown
    const char* column; // how the names of the branch's stored columns begin
    int defaultType;
    int defaultNumber;
};

inline constexpr std::array<Branch, 5> Branches = {{
    {Slot::Timeout, "Timeout", "Timeout", MessageType, 1},
    {Slot::Invalid, "Invalid", "Invalid", MessageType, 1},
    {Slot::Abort, "Abort", "Abort", MessageType, 1},
    {Slot::Star, "*", "Star", NumberlessExceptionType, 0},
    {Slot::Pound, "#", "Pound", NumberlessExceptionType, 0},
}};

// The place of a branch's rule, from its slot.
[[nodiscard]] constexpr std::size_t BranchOf(Slot slot) {
    return static_cast<std::size_t>(slot) - static_cast<std::size_t>(Slot::Timeout);
}

} // namespace KAL_AUTO_Node
