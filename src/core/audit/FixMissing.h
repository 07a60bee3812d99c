#pragma once

#include "nodes/Identity.h"
#include "nodes/RequiredNodes.h"
#include "nodes/Templates.h"

#include <string>

namespace KAL_AUTO_Node {

class DataBase;
class History;

// Makes a missing node from its template as the editor does in a save, wholly or not at all; one that a save
// began to make and never finished is made whole. Raises what keeps it from being made, DuplicateKey where
// rows of it are there without an entry of the register.
Creation CreateMissing(DataBase& dataBase, History& history, Partition partition, const RequiredNode& node,
                       const std::string& date);

// The same as part of a transaction, of a node that is not there; an AUTO node's first version says so. Where
// there is no template, the transaction must not be committed.
Creation MakeOfTemplate(DataBase& dataBase, History& history, Partition partition, const NodeKey& node,
                        const std::string& date);

// Whether there is what it would be made of.
[[nodiscard]] bool CanBeMade(DataBase& dataBase, Partition partition, const RequiredNode& node);

} // namespace KAL_AUTO_Node
