#pragma once

#include "nodes/AutoNode.h"

#include <cstddef>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// Digit sequences of one length are numbers with leading zeros; of two lengths they have nothing in common:
// 007 is not 7.

inline constexpr int LongestEntry = SettingFields.front().last;

// How many sequences of a length there are.
[[nodiscard]] int SequencesOf(int length);

// A sequence as it is keyed.
[[nodiscard]] std::string SequenceText(int length, int sequence);

// How many digits a node takes at most: as many as any node may where it is not known.
struct EntryLength {
    int most = LongestEntry;
    bool known = false;
};

[[nodiscard]] EntryLength EntryLengthOf(const Settings& settings);

enum class RangeKind {
    Clear,
    NotDigits, // an end is missing or not of digits: which sequences it holds is not known
    Lengths,   // the ends differ in length: neither is it
    Reversed,  // it holds none
    TooLong,   // none that the node takes
};

// Of a node that takes so many digits at most.
[[nodiscard]] RangeKind KindOf(const Action& action, int digits);

// Sequences of one length that an action holds or, where its range is not clear, holds in a reading of it.
struct DigitRange {
    std::size_t action = 0; // by position from 0
    int length = 0;
    int low = 0;
    int high = 0;
    bool clear = true;
};

// All of them that a node of so many digits takes, in the order of the actions. A range that is not clear is
// read as numbers (1 is 01), as texts (10 comes before 2) and as sequences of each length between its ends;
// an end that is missing leaves it open there, or both stand for 0, as the editor shows it. Takes time by the
// actions.
[[nodiscard]] std::vector<DigitRange> RangesOf(const std::vector<Action>& actions, int digits);

} // namespace KAL_AUTO_Node
