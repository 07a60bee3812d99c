#pragma once

#include "form/NodeLists.h"
#include "form/NodeTypes.h"

#include <array>
#include <cstddef>

namespace KAL_AUTO_Node {

// The places of the window from which an AUTO node refers to other nodes. Each has a type picker and a number
// picker that float over the row being edited.
enum class Slot : std::size_t { Prompts, Actions, Timeout, Invalid, Abort, Star, Pound };

struct SlotRule {
    const char* nodePicker;
    const char* numberPicker;
    const char* spokenName; // for assistive technology
    int setID;              // the set of node types that may be referred to from here
    // Those of the set that have no numbers.
    Collection<QString> NodeLists::*notAvailable;
    // Types without a stored limit are offered only where message nodes have numbers.
    bool unlimitedNeedMessages = false;
};

inline constexpr std::array<SlotRule, 7> SlotRules = {{
    {"cmbPromptsNode", "cmbPromptsNumber", "Prompt", 7, &NodeLists::NotAvailablePromptsNode},
    {"cmbActionsNode", "cmbActionsNumber", "Action", 6, &NodeLists::NotAvailableActionsNode, true},
    {"cmbExceptionsTimeoutNode", "cmbExceptionsTimeoutNumber", "Timeout exception", 1,
     &NodeLists::NotAvailableTimeoutNode},
    {"cmbExceptionsInvalidNode", "cmbExceptionsInvalidNumber", "Invalid exception", 3,
     &NodeLists::NotAvailableInvalidNode},
    {"cmbExceptionsAbortNode", "cmbExceptionsAbortNumber", "Abort exception", 5,
     &NodeLists::NotAvailableAbortNode},
    {"cmbExceptionsStarNode", "cmbExceptionsStarNumber", "Star exception", 8,
     &NodeLists::NotAvailableStarNode},
    {"cmbExceptionsPoundNode", "cmbExceptionsPoundNumber", "Pound exception", 9,
     &NodeLists::NotAvailablePoundNode},
}};

[[nodiscard]] constexpr const SlotRule& RuleOf(Slot slot) {
    return SlotRules[static_cast<std::size_t>(slot)];
}

// The five exception branches in the order of their rows.
struct ExceptionRule {
    Slot slot;
    const char* label;  // as the list shows it
    const char* column; // how the names of the branch's stored columns begin
    int defaultType;
    const char* defaultNumber;
};

inline constexpr std::array<ExceptionRule, 5> ExceptionRules = {{
    {Slot::Timeout, "Timeout", "Timeout", MessageType, "1"},
    {Slot::Invalid, "Invalid", "Invalid", MessageType, "1"},
    {Slot::Abort, "Abort", "Abort", MessageType, "1"},
    {Slot::Star, "*", "Star", NumberlessExceptionType, "0"},
    {Slot::Pound, "#", "Pound", NumberlessExceptionType, "0"},
}};

// The columns of the three lists; the last two are the actions list's alone.
enum Column : int {
    PositionColumn,
    LeadColumn, // "Order", "Entry" or the exception's label
    CommandNodeColumn,
    LabelColumn,
    NodeNameColumn,
    NodeTypeIDColumn,
    NodeNumberColumn,
    DTMFRangeLowColumn,
    DTMFRangeHighColumn,
};

} // namespace KAL_AUTO_Node
