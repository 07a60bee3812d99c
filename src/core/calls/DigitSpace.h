#pragma once

#include "calls/Ranges.h"
#include "nodes/AutoNode.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// Some of a node's actions: how many, and the first of them by position from 0, as far as there are.
struct ActionSet {
    std::size_t count = 0;
    std::array<std::size_t, 2> first{};

    [[nodiscard]] std::span<const std::size_t> First() const {
        return std::span(first).first(std::min(count, first.size()));
    }

    friend bool operator==(const ActionSet&, const ActionSet&) = default;
};

// Sequences next to one another of which the same is to be said.
struct DigitInterval {
    int low = 0;
    int high = 0;
    // The actions that hold them; which of several wins is not known.
    ActionSet leads;
    // Those that may: their range is not clear, or the node may take fewer digits and they hold the first.
    ActionSet may;
    // Those that a longer sequence may reach with them at its beginning: a caller who stops here may wait for
    // the digit time-out.
    ActionSet waits;
    // Whether it may be that no action holds them.
    bool nobody = true;
    // Whether one of them is of an action whose range is not clear.
    bool unclear = false;
    // How many different targets the actions have that hold them, and those that do or may.
    std::size_t leadTargets = 0;
    std::size_t targets = 0;

    [[nodiscard]] int Count() const { return high - low + 1; }
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
};

// A place among the sequences of a length at which a range, projected to it, begins or is over.
struct RangeEdge {
    int at = 0;
    bool begins = false;
    const DigitRange* range = nullptr;
};

// Adds those that matter among the sequences of a length: of ranges of it and of longer ones; where the node
// may take fewer digits, of shorter ones, too.
void AddEdges(std::span<const DigitRange> ranges, int length, bool lengthKnown,
              std::vector<RangeEdge>& edges);

// Every length that the node may take. Takes n log n time and linear memory by the actions.
[[nodiscard]] std::vector<DigitLength> DigitSpaceOf(const AutoNode& node);

// Sequences that stand in the ranges of two actions.
struct SharedDigits {
    std::size_t action; // by position from 0
    std::size_t other;  // of all that begin no later, the one that reaches furthest
    std::string low;
    std::string high;
};

// For each action of a clear range that meets one which begins no later, once, in the order of their ranges.
// Takes n log n time.
[[nodiscard]] std::vector<SharedDigits> FindSharedDigits(const std::vector<Action>& actions, int digits);

} // namespace KAL_AUTO_Node
