#pragma once

#include "nodes/AutoNode.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// Bringing together what two have changed, each beside what it was before. What one of them has changed
// stands, as does what both have changed alike; what they have changed to different ends is for a person to
// settle.

enum class Stands { One, Other, Neither };

// Which of the two stands of a part that is changed as a whole: a setting, a label, a reference.
template <class Part, class Same = std::equal_to<>>
[[nodiscard]] Stands WhichStands(const Part& before, const Part& one, const Part& other, Same same = {}) {
    return same(one, other) || same(before, other) ? Stands::One
           : same(before, one)                     ? Stands::Other
                                                   : Stands::Neither;
}

// A row of a list, as it is told from others.
struct ListedRow {
    std::string name;           // what makes it the same row when its content changes
    std::string content;        // all of it but its place
    bool standsForNone = false; // it stands in a list without rows

    friend bool operator==(const ListedRow& a, const ListedRow& b) { return a.content == b.content; }
};

[[nodiscard]] ListedRow ListedOf(const Prompt& prompt); // by all of it, since what is played may come again
[[nodiscard]] ListedRow ListedOf(const Action& action); // by its entry

// What is played is in an order: rows that both put to the same place are for a person to order. Where rows
// have names of their own, those of the other follow those of the one, and no name may stand there more often
// than with either.
enum class ListKind { Ordered, Named };

// A row of a merged list: which of the two lists it is from, and its place there.
struct MergedRow {
    bool ofOther;
    std::size_t place;
};

// A list of which both have changed different rows, in which nothing that either did is lost. Nothing where
// both have changed the same row, or the order at the same place.
[[nodiscard]] std::optional<std::vector<MergedRow>> MergeLists(std::span<const ListedRow> before,
                                                               std::span<const ListedRow> one,
                                                               std::span<const ListedRow> other,
                                                               ListKind kind);

// A node of which both have changed different parts: a setting, the label, a branch, rows of a list, which
// are then numbered anew. Nothing where both have changed the same.
[[nodiscard]] std::optional<AutoNode> MergeNodes(const AutoNode& before, const AutoNode& one,
                                                 const AutoNode& other);

} // namespace KAL_AUTO_Node
