#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <utility>

namespace KAL_AUTO_Node {

// Configuration and partition: the part of the store in which nodes refer to one another.
struct Partition {
    std::int16_t config = 0;
    std::int16_t number = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): finds a 0 in what the compiler writes
    friend auto operator<=>(const Partition&, const Partition&) = default;
};

// An AUTO node of the store.
struct NodePlace {
    Partition partition;
    std::int16_t number = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): the same
    friend auto operator<=>(const NodePlace&, const NodePlace&) = default;

    // Another for each place: for transactions that keep out one another only where they are about the same
    // node.
    [[nodiscard]] std::int64_t Number() const {
        const auto part = [](std::int16_t value) { return std::int64_t{static_cast<std::uint16_t>(value)}; };
        return part(partition.config) << 32 | part(partition.number) << 16 | part(number);
    }
};

// A node of a partition, whatever its type: the type's ID, the number.
using NodeKey = std::pair<int, int>;

// A node of any type, as it is shown: "AUTO 12".
struct NodeName {
    int typeID = 0;
    std::string type;
    int number = 0;

    [[nodiscard]] std::string Text() const { return type + ' ' + std::to_string(number); }
};

// Of this number every type has the partition's template, from which new nodes are made.
inline constexpr int TemplateNumber = 0;

// The highest number that a node can have.
inline constexpr int HighestNodeNumber = INT16_MAX;

} // namespace KAL_AUTO_Node
