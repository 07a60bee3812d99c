#pragma once

#include "nodes/Identity.h"
#include "nodes/Settings.h"
#include "nodes/Slots.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// Whether the labels of the nodes that a node refers to are read with it: under the type of the reference, as
// the window shows them, or that of the node, which is another where a message is referred to.
enum class Labels { Read, ReadOfNodes, Leave };

// The node that an AUTO node refers to.
struct Reference {
    int typeID = 0;
    std::string type; // the type's code text
    int number = 0;
    // Of the node referred to; a thing to show, no part of the value.
    std::string label;

    // The node that it leads to.
    [[nodiscard]] NodeKey Key() const { return NodeKey{typeID, number}.Itself(); }

    friend bool operator==(const Reference& a, const Reference& b) {
        return a.typeID == b.typeID && a.number == b.number && a.type == b.type;
    }
};

// How a reference is shown: type and number, or the type alone where its references carry no number.
[[nodiscard]] std::string DisplayText(const Reference& reference, Slot from);

struct Prompt {
    int sequence = 0; // as stored; lists are renumbered when they are written
    Reference target;

    friend bool operator==(const Prompt&, const Prompt&) = default;
};

// Leads from a range of digit sequences to a node. The ends are texts: 007 is not 7.
struct Action {
    int sequence = 0;
    Reference target;
    std::optional<std::string> low;
    std::optional<std::string> high;

    friend bool operator==(const Action&, const Action&) = default;
};

// The ends as they are shown; both are "0" where either is missing.
struct ShownRange {
    std::string_view low;
    std::string_view high;
};

[[nodiscard]] inline ShownRange RangeOf(const Action& action) {
    return action.low && action.high ? ShownRange{*action.low, *action.high} : ShownRange{"0", "0"};
}

// What is keyed, for people: "7", "601-660".
[[nodiscard]] std::string KeysText(const Action& action);

// The text by which an action is told from others.
[[nodiscard]] std::string EntryText(const Action& action);

// The actions whose text an earlier one has, whatever the case, by their positions. Ranges that overlap
// without being equal are no duplicates.
[[nodiscard]] std::vector<std::size_t> DuplicateEntries(const std::vector<Action>& actions);

// An AUTO node as it is stored; texts are UTF-8.
struct AutoNode {
    std::string type; // its own code text
    std::optional<std::string> label;
    Settings settings;
    std::vector<Prompt> prompts;
    std::vector<Action> actions;
    std::array<Reference, Branches.size()> branches; // in the order of their rules

    friend bool operator==(const AutoNode&, const AutoNode&) = default;
};

// What turns one node into another, in words, a line for each difference; none where they are equal but for
// sequence numbers, which say no more than the order.
[[nodiscard]] std::vector<std::string> Differences(const AutoNode& before, const AutoNode& after);

} // namespace KAL_AUTO_Node
