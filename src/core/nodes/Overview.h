#pragma once

#include "nodes/Identity.h"
#include "nodes/Settings.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;

struct PartitionCounts {
    Partition partition;
    std::int64_t autoNodes = 0;       // without templates, as the one below
    std::int64_t registeredNodes = 0; // of every type
};

// Every partition that has a node, in order.
[[nodiscard]] std::vector<PartitionCounts> ReadPartitions(DataBase& dataBase);

// The partition's register, in the order of types and numbers; texts are those of the row.
void ReadRegister(
    DataBase& dataBase, Partition partition,
    const std::function<void(const NodeKey& node, std::string_view type, std::string_view label)>& take);

// The AUTO nodes of the partition, in the order of their numbers. A number that no node can have raises
// Overflow.
void ReadAutoNodes(DataBase& dataBase, Partition partition,
                   const std::function<void(std::int16_t number, std::string_view label)>& take);

// The AUTO node of the lowest number in the first partition that has one besides its template.
[[nodiscard]] std::optional<NodePlace> FirstAutoNode(DataBase& dataBase);

// An AUTO node without what it refers to.
struct AutoNodeSummary {
    std::int16_t number = 0;
    std::optional<std::string> label;
    Settings settings;
    std::int64_t prompts = 0; // rows
    std::int64_t actions = 0;
};

// Hands over the partition's AUTO nodes one by one, in the order of their numbers, the template among them.
void ReadSummaries(DataBase& dataBase, Partition partition,
                   const std::function<void(const AutoNodeSummary&)>& take);

} // namespace KAL_AUTO_Node
