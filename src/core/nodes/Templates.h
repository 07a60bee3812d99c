#pragma once

#include "nodes/Identity.h"
#include "platform/RuntimeError.h"

#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

class DataBase;

// What came of making a node from the template. A node exists for the system when the register has it.
enum class Creation {
    Created,
    NoRule,       // there is no rule for copying nodes of the type; nothing was written
    NoTemplate,   // nothing was there to be copied
    Unregistered, // its rows were copied, but the template has no register row
    Empty,        // it was registered, but the template has no rows of its own
};

// What to tell a person of nodes of which that came.
[[nodiscard]] const char* WhyNotCreated(Creation outcome);

// What is done about rows of the new number that are there already.
enum class Existing {
    Refuse, // DuplicateKey is raised
    Keep,   // they are taken as copied before
};

// The DuplicateKey of a creation that has written nothing.
struct AlreadyThere : RuntimeError {
    explicit AlreadyThere(const RuntimeError& error) : RuntimeError(error) {}
};

// Copies a node under a new number: its own row, its detail rows, its register row, each statement by itself.
// A reference to a message stands for the message. The date is today's as dates are stored.
Creation CreateNodeFromTemplate(DataBase& dataBase, Partition partition, int source,
                                const NodeKey& destination, const std::string& date,
                                Existing existing = Existing::Refuse);

// Whether there is a rule for copying nodes of a type; those are the types whose nodes the store has tables
// for.
[[nodiscard]] bool HasCopyRule(int typeID);

// By this word the names of the tables of a type's nodes are: Node_MSG, Detail_CMD; empty where there is no
// rule.
[[nodiscard]] std::string_view TableWord(int typeID);

// The file that a message of that number plays.
[[nodiscard]] std::string MessageFileName(int partition, int number);

// Whether the register has a node; a reference to a message stands for the message.
[[nodiscard]] bool IsNodeExisted(DataBase& dataBase, Partition partition, const NodeKey& node);

} // namespace KAL_AUTO_Node
