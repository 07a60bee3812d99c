#pragma once

#include "nodes/AutoNode.h"

#include <compare>
#include <string>

namespace KAL_AUTO_Node {

// Where a call is led: what of a reference makes a difference there.
struct Target {
    int typeID = 0;
    int number = 0; // 0 where it has none
    bool hasNumber = true;
    std::string type; // the stored name

    // NOLINTNEXTLINE(modernize-use-nullptr): finds a 0 in what the compiler writes
    friend auto operator<=>(const Target&, const Target&) = default;

    // "MSG 31", or the type alone.
    [[nodiscard]] std::string Text() const { return hasNumber ? type + ' ' + std::to_string(number) : type; }

    // The node that it is or, of a reference to a message under another type, refers to.
    [[nodiscard]] NodeKey Key() const { return NodeKey{typeID, number}.Itself(); }
};

[[nodiscard]] inline Target TargetOf(const Reference& reference, Slot from) {
    const bool hasNumber = reference.typeID != NumberlessTypeOf(from);
    return {reference.typeID, hasNumber ? reference.number : 0, hasNumber, reference.type};
}

} // namespace KAL_AUTO_Node
