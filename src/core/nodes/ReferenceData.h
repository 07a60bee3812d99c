#pragma once

#include "nodes/Identity.h"
#include "nodes/NodeLists.h"
#include "nodes/Slots.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

class DataBase;
class ReadAhead;

// What the store says about the node types of a partition. Each procedure fills what it is given row by row,
// so that what was read before an error is there.

// Fetches from a server the rows of names, highest numbers, types of all places and AUTO nodes.
void FetchLists(ReadAhead& ahead, DataBase& dataBase, Partition partition);

// The highest number of a type, at most the highest that a node can have; nothing where no limit is stored.
[[nodiscard]] std::optional<int> ReadMaxNodeNumber(DataBase& dataBase, Partition partition, int typeID);

// Names and highest numbers of all types. The second message types have the message type's where they have
// none of their own, and so raise InvalidProcedureCall where that is not listed.
void ReadNodeNames(DataBase& dataBase, Partition partition, NodeLists& lists);

// The types that a place may refer to: those that have numbers, or that are offered all the same, are handed
// over; the others are noted as not available. Needs the names.
void ReadContainableTypes(DataBase& dataBase, Partition partition, Slot slot, NodeLists& lists,
                          const std::function<void(int typeID, const std::string& name)>& offer);

// The numbers that are offered of a type at once: those of the message type for all message types.
[[nodiscard]] int ReadAssignableNumbers(DataBase& dataBase, Partition partition, int typeID);

// The AUTO nodes of the partition, in the order of their numbers. A number that no node can have raises
// Overflow.
void ReadAutoNodes(DataBase& dataBase, Partition partition,
                   const std::function<void(std::int16_t number, std::string_view label)>& take);

} // namespace KAL_AUTO_Node
