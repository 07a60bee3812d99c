#pragma once

#include "nodes/Identity.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class History;
class TypeNames;

// What is done about nodes that the copy refers to and that its partition lacks.
enum class Missing { Refuse, Keep, Create };

struct CopyOrder {
    Partition from;
    NodeKey node;
    Partition to; // may be the same
    int number = 0;
    std::optional<std::string> label; // the node's where none is given
    Missing missing = Missing::Refuse;
};

// What a copy comes to, and what stands in its way, each for people; nothing is written where anything does.
struct CopyReport {
    std::vector<std::string> obstacles;
    std::set<NodeKey> missing; // in another partition; left missing, or made
    std::string recording;     // the file that the copy of a message plays
};

enum class Carry { Out, OnlyTell };

// Makes another node of one, with its detail rows and its row of the register, in one step; of an AUTO node
// the step is a version of the new one's history. The number has to be free, and one that nodes of the type
// can have there. Within a partition the named commands copy; what the copy refers to is what the node refers
// to. A message plays a file of its own. The date is today's as dates are stored.
CopyReport CopyNode(DataBase& dataBase, History& history, const TypeNames& names, const CopyOrder& order,
                    const std::string& date, Carry carry);

// Why a number cannot be that of a new node there, for people; nothing where it can.
[[nodiscard]] std::optional<std::string> WhyNotNew(DataBase& dataBase, const TypeNames& names,
                                                   Partition partition, const NodeKey& node);
// Why a node cannot be copied, moved or removed, likewise: the template, one without tables, one that is not
// there, or is being saved or was left half-way.
[[nodiscard]] std::optional<std::string> WhyNotTouched(DataBase& dataBase, History& history,
                                                       const TypeNames& names, Partition partition,
                                                       const NodeKey& node);

} // namespace KAL_AUTO_Node
