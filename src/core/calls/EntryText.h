#pragma once

#include "calls/Outcomes.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// The codes of reasons, with commas between them.
[[nodiscard]] std::string Codes(const std::vector<Reason>& reasons);

// An interval's ends, or the one sequence that it is.
[[nodiscard]] std::string Sequences(int length, const DigitInterval& interval);

// What a caller waits for after an entry that begins a longer one, and why; empty where nobody waits.
[[nodiscard]] std::string WaitingAfter(const Menu& menu, const DigitInterval& interval);

// "Takes 1 to 3 digits; Invalid is MSG 6; callers may be asked again"
[[nodiscard]] std::string EntriesText(const Menu& menu);

// What is to be said of an interval of a node's digit space, for people.
struct IntervalText {
    std::string entries;
    int count = 0;
    std::string leadsTo;
    std::string label;           // of what an action leads to for certain
    std::string waits;           // what a caller waits for after an entry that begins a longer one, and why
    std::string codes;           // of the reasons
    std::optional<NodeKey> node; // that it leads to for certain
};

[[nodiscard]] IntervalText TextOf(const Menu& menu, int length, const DigitInterval& interval);

// What callers meet who key that entry: "12: AUTO 8; waits for digits or #, because of 120-129". Of the digit
// space of the same menu.
[[nodiscard]] std::string EntryAnswer(const Menu& menu, std::span<const DigitLength> lengths,
                                      const std::string& entry);

} // namespace KAL_AUTO_Node
