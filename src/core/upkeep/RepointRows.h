#pragma once

#include "audit/Repoint.h"
#include "exchange/Plan.h"

namespace KAL_AUTO_Node {

// A plan of references as one of rows, to be written down. It rests on the nodes that take the places, too.
[[nodiscard]] RowPlan RowsOf(DataBase& dataBase, Partition partition, const RepointPlan& repoint,
                             std::span<const Replacement> replacements, const std::string& date);

} // namespace KAL_AUTO_Node
