#pragma once

#include "nodes/NodeTypes.h"
#include "platform/RuntimeError.h"

#include <array>
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

    // As a command's parameters.
    [[nodiscard]] std::array<int, 2> Numbers() const { return {config, number}; }

    [[nodiscard]] std::string Text() const {
        return "configuration " + std::to_string(config) + ", partition " + std::to_string(number);
    }
};

// A node of a partition, whatever its type.
struct NodeKey {
    int typeID = 0;
    int number = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): the same
    friend auto operator<=>(const NodeKey&, const NodeKey&) = default;

    // The message where it is referred to under another type.
    [[nodiscard]] NodeKey Itself() const { return {NodeTypeOf(typeID), number}; }

    // As a command's parameters.
    [[nodiscard]] std::array<int, 2> Numbers() const { return {typeID, number}; }

    // Under the name of its type: "AUTO 12".
    [[nodiscard]] std::string Text(std::string type) const {
        type += ' ';
        return type += std::to_string(number);
    }
};

// How an AUTO node is told of; the number is one that none can have, too.
[[nodiscard]] inline std::string NodeTextIn(const Partition& partition, int number) {
    return "AUTO node " + std::to_string(number) + " of " + partition.Text();
}

// An AUTO node of the store.
struct NodePlace {
    Partition partition;
    std::int16_t number = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): the same
    friend auto operator<=>(const NodePlace&, const NodePlace&) = default;

    [[nodiscard]] NodeKey Key() const { return {AutoType, number}; }

    // As a command's parameters.
    [[nodiscard]] std::array<int, 3> Numbers() const { return {partition.config, partition.number, number}; }

    [[nodiscard]] std::string Text() const { return NodeTextIn(partition, number); }

    // Another for each place: for transactions that keep out one another only where they are about the same
    // node.
    [[nodiscard]] std::int64_t LockKey() const {
        const auto part = [](std::int16_t value) { return std::int64_t{static_cast<std::uint16_t>(value)}; };
        return part(partition.config) << 32 | part(partition.number) << 16 | part(number);
    }
};

// The place of a number that was read; raises Overflow for one that no AUTO node can have.
[[nodiscard]] inline NodePlace PlaceOf(const Partition& partition, int number) {
    if (!std::in_range<std::int16_t>(number)) {
        throw RuntimeError(ErrorNumber::Overflow,
                           "No AUTO node can have the number " + std::to_string(number));
    }
    return {partition, static_cast<std::int16_t>(number)};
}

// Of this number every type has the partition's template, from which new nodes are made.
inline constexpr int TemplateNumber = 0;

// The highest number that a node can have.
inline constexpr int HighestNodeNumber = INT16_MAX;

} // namespace KAL_AUTO_Node
