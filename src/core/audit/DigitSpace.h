#pragma once

#include "audit/Findings.h"
#include "nodes/AutoNode.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// Digit sequences of one length are numbers with leading zeros; of two lengths they have nothing in common:
// 007 is not 7.

// The most digits that a node takes.
[[nodiscard]] int NumberOfDigits(const AutoNode& node);

// What keeps an action's range from holding any sequence that a node of so many digits takes.
[[nodiscard]] std::optional<Fault> RangeFault(const Action& action, int digits);

// Some of a node's actions: how many, and the first of them by position from 0, as far as there are.
struct ActionSet {
    std::size_t count = 0;
    std::array<std::size_t, 2> first{};

    friend bool operator==(const ActionSet&, const ActionSet&) = default;
};

// Sequences next to one another of which the same is to be said.
struct DigitInterval {
    int low = 0;
    int high = 0;
    // The actions whose ranges hold them. Without one they lead to Invalid; which of several wins is not
    // known.
    ActionSet leads;
    // The actions that a longer sequence may reach with them at its beginning: a caller who stops here waits
    // for the digit time-out.
    ActionSet waits;

    [[nodiscard]] int Count() const { return high - low + 1; }

    friend bool operator==(const DigitInterval&, const DigitInterval&) = default;
};

// All sequences of one length, in order, without gaps.
struct DigitLength {
    int length = 0;
    std::vector<DigitInterval> intervals;

    // How many sequences the filter takes.
    template <class Filter>
    [[nodiscard]] int Count(Filter filter) const {
        int count = 0;
        for (const DigitInterval& interval : intervals) {
            count += filter(interval) ? interval.Count() : 0;
        }
        return count;
    }

    // A sequence as it is keyed.
    [[nodiscard]] std::string Text(int sequence) const;
};

// Every length from 1 to that many digits. Takes n log n time and linear memory by the actions; actions with
// a fault of their range take no part.
[[nodiscard]] std::vector<DigitLength> DigitSpaceOf(const std::vector<Action>& actions, int digits);

// Sequences that stand in the ranges of two actions.
struct SharedDigits {
    std::size_t action; // by position from 0
    std::size_t other;  // of all that begin no later, the one that reaches furthest
    std::string low;
    std::string high;
};

// For each action that meets one which begins no later, once, in the order of their ranges. Takes n log n
// time.
[[nodiscard]] std::vector<SharedDigits> FindSharedDigits(const std::vector<Action>& actions, int digits);

} // namespace KAL_AUTO_Node
