#pragma once

namespace KAL_AUTO_Node {

class GUI;
struct AutoNode;

// The node as it stands in the window, rows in their order. Raises SubscriptOutOfRange where a list lacks a
// row, TypeMismatch for a text that should be a number.
[[nodiscard]] AutoNode GatherNode(const GUI& gui);

} // namespace KAL_AUTO_Node
