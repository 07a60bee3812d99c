#pragma once

#include "nodes/AutoNode.h"

namespace KAL_AUTO_Node {

class GUI;

// The node as it stands in the window, rows in their order. Raises SubscriptOutOfRange where a list lacks a
// row, TypeMismatch for a text that should be a number.
[[nodiscard]] AutoNode GatherNode(const GUI& gui);
// A stored node as the window shows it, and would gather it. Raises InvalidProcedureCall for a type that it
// cannot show.
[[nodiscard]] AutoNode AsShown(const GUI& gui, AutoNode node);
// Its actions alone.
[[nodiscard]] std::vector<Action> GatherActions(const GUI& gui);

} // namespace KAL_AUTO_Node
