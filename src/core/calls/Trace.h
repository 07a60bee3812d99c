#pragma once

#include "calls/CallMap.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// What a caller does at a menu, or which way of those that are open is taken.
struct Step {
    enum class Kind { Enter, Except, Choose };

    Kind kind = Kind::Enter;
    std::string digits;     // entered
    std::size_t branch = 0; // of the exception, by position
    NodeKey node;           // chosen
    std::string text;       // as it is written
};

// The steps of a text in words: 1 to 7 digits, *, #, timeout, invalid, abort, or @TYPE NUMBER. Raises
// InvalidProcedureCall for other words.
[[nodiscard]] std::vector<Step> StepsOf(std::span<const std::string> words, const TypeNames& names);

// An exception's step, as it is written.
[[nodiscard]] std::string StepName(std::size_t branch);

// The whole number that a text is, of 16 bits as a node's; nothing for other texts.
[[nodiscard]] std::optional<int> NodeNumberOf(std::string_view text);

// Where a call may be, and what becomes of it there.
struct Stop {
    Target node;
    const Menu* menu = nullptr;       // of the map; nothing where there is none
    std::optional<Outcomes> outcomes; // of the step that is taken here
    std::optional<Reason> end;        // why the way ends here, with steps left or not
};

// Before each step, and after the last, where a call may be, each node once.
using Walk = std::vector<std::vector<Stop>>;

// Raises InvalidProcedureCall where there is no such node, where no menu takes so long an entry, and where no
// way leads to a node that is chosen.
[[nodiscard]] Walk WalkFrom(const CallMap& map, int number, std::span<const Step> steps);

} // namespace KAL_AUTO_Node
