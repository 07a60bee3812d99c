#pragma once

#include "controls/ListView.h"
#include "nodes/AutoNode.h"

#include <cstddef>

namespace KAL_AUTO_Node {

// The rows of the three lists from what they refer to; without a label.
[[nodiscard]] ListRow PromptRow(const Reference& target);

[[nodiscard]] ListRow ActionRow(const Action& action);

[[nodiscard]] ListRow ExceptionRow(std::size_t branch, const Reference& target);

// What a row refers to, as it is saved, and the action that it is.
[[nodiscard]] Reference TargetOf(const ListRow& row);
[[nodiscard]] Action ActionOf(const ListRow& row, int sequence);

// The row that stands in a prompts list without prompts.
[[nodiscard]] ListRow EmptyRow(const QString& name);

// Whether the prompts list starts with the row above, as it does where it holds no prompts.
[[nodiscard]] bool HoldsEmptyRow(const ListView& prompts);

// Takes that row out, where it is there, before prompts are added.
void RemoveEmptyRow(ListView& prompts);

} // namespace KAL_AUTO_Node
