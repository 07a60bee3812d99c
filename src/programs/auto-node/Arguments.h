#pragma once

#include "auto-node/CommandLine.h"
#include "nodes/Identity.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class TypeNames;
struct AutoNode;

// What the commands take alike.

// A whole number of 16 bits, in decimal. Refuses another text.
[[nodiscard]] std::int16_t ReadNumber(const std::string& name, const std::string& text);
// The number of a version, and of steps, which may be 0, likewise.
[[nodiscard]] int ReadVersion(const std::string& name, const std::string& text);
[[nodiscard]] int ReadSteps(const std::string& name, const std::string& text);
Option AddNumber(const CommandArguments& command, const std::string& name, std::int16_t& number,
                 const std::string& description);

// CONFIG PARTITION, both required.
void AddPartition(const CommandArguments& command, Partition& partition);

// The same where both may be left out; tells whether they are given.
Option AddAnyPartition(const CommandArguments& command, Partition& partition);

// A node type by its name or its ID.
Option AddType(const CommandArguments& command, const std::string& name, std::string& type);

// CONFIG PARTITION NODE, all required.
void AddNode(const CommandArguments& command, NodePlace& place);

// CONFIG PARTITION TYPE NUMBER, all required.
struct NodeArguments {
    Partition partition;
    std::string type;
    std::int16_t number = 0;

    // A reference to a message stands for the message. Raises InvalidProcedureCall for a type that there is
    // not.
    [[nodiscard]] NodeKey Meant(const TypeNames& names) const;
};

void AddNodeOfAnyType(const CommandArguments& command, NodeArguments& node);

// A day or a time as the option of that name takes it, in the form in which times are stored; of a day its
// beginning or, so many days later, that of another.
[[nodiscard]] std::function<void(const std::string&)> ReadTime(const std::string& name, std::string& stamp,
                                                               int daysLater);

// --note, which the history keeps with the change.
Option AddNote(const CommandArguments& command, std::string& note);

// The text that a file holds. Throws where it cannot be read.
[[nodiscard]] std::string ReadTextFile(const std::string& file);

// Throws where something stands in the way, telling it a line each.
void RequireNoObstacles(const std::vector<std::string>& obstacles);

// Throws that a partition has none.
[[noreturn]] void FailWithoutNodes(Partition partition);
// Throws that the AUTO node does not exist.
[[noreturn]] void FailWithout(const NodePlace& place);

// The node with the labels of those that it refers to. Throws where there is none.
[[nodiscard]] AutoNode RequireAutoNode(DataBase& dataBase, const NodePlace& place);

} // namespace KAL_AUTO_Node
