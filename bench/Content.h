#pragma once

#include "testing/TestStore.h"

#include <array>

namespace KAL_AUTO_Node {

// A node of configuration 1.
struct Place {
    int partition;
    int node;
};

inline constexpr int BenchConfig = 1;

// A node or a partition and how large it is.
struct SizedPlace {
    Place place;
    const char* size;
};

// Partitions of so many AUTO nodes, each with 5 prompts and 5 actions in the node opened.
inline constexpr std::array<SizedPlace, 3> SmallNodes = {
    {{{3, 1}, "10 nodes"}, {{4, 1}, "1,000 nodes"}, {{5, 1}, "32,767 nodes"}}};

// Nodes of so many prompts and as many actions; their references are all different and all there.
inline constexpr std::array<SizedPlace, 3> LargeNodes = {
    {{{6, 1}, "10 + 10 rows"}, {{6, 2}, "1,000 + 1,000 rows"}, {{6, 3}, "10,000 + 10,000 rows"}}};

// A node of 30 prompts and 30 actions.
inline constexpr Place SixtyRows{6, 4};

// Nodes of so many actions; the same in a partition that has none of the nodes referred to.
inline constexpr std::array<SizedPlace, 2> Referring = {
    {{{7, 1}, "1,000 references"}, {{7, 2}, "10,000 references"}}};
inline constexpr std::array<SizedPlace, 2> ReferringToNothing = {
    {{{8, 1}, "1,000 references"}, {{8, 2}, "10,000 references"}}};

// A node type and how many numbers it has in every partition here.
struct SizedType {
    int nodeTypeID;
    int numbers;
    const char* size;
};

inline constexpr std::array<SizedType, 3> PickedTypes = {
    {{1, 9, "9 numbers"}, {2, 999, "999 numbers"}, {3, 32767, "32,767 numbers"}}};

// Adds all that to a demo store.
void AddContent(const TestStore& store);

// Empties the write-ahead log, so that no pass pays for the log that those before it left.
void EmptyLog(const TestStore& store);

} // namespace KAL_AUTO_Node
