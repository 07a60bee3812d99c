#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>

namespace KAL_AUTO_Node {

class DataBase;

// What the commands take alike.

// A whole number of 16 bits, in decimal. Throws CLI::ValidationError for another text.
[[nodiscard]] std::int16_t ReadNumber(const std::string& name, const std::string& text);
// The number of a version, likewise.
[[nodiscard]] int ReadVersion(const std::string& name, const std::string& text);
CLI::Option* AddNumber(CLI::App& command, const std::string& name, std::int16_t& number,
                       const std::string& description);

// CONFIG PARTITION, both required.
void AddPartition(CLI::App& command, Partition& partition);

// A node type by its name or its ID.
void AddType(CLI::App& command, const std::string& name, std::string& type);

// CONFIG PARTITION NODE, all required.
void AddNode(CLI::App& command, NodePlace& place);

// The node with the labels of those that it refers to. Throws where there is none.
[[nodiscard]] AutoNode RequireAutoNode(DataBase& dataBase, const NodePlace& place);

} // namespace KAL_AUTO_Node
