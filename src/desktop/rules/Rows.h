#pragma once

#include "controls/ListView.h"
#include "form/Columns.h"
#include "nodes/AutoNode.h"

#include <cstddef>

namespace KAL_AUTO_Node {

// The rows of the three lists at their position from 1: key, lead cell and what they refer to; without a
// label. A prompt is led by its position, an action by its range of digits, an exception, at its branch's
// position, by its name.
[[nodiscard]] ListRow PromptRowAt(int position, const Reference& target);

[[nodiscard]] ListRow ActionRowAt(int position, const QString& low, const QString& high,
                                  const Reference& target);

[[nodiscard]] ListRow ExceptionRowAt(std::size_t branch, const Reference& target);

// The row that stands in a prompts list without prompts.
[[nodiscard]] ListRow EmptyRow(const QString& name);

// Whether the prompts list starts with the row above, as it does where it holds no prompts.
[[nodiscard]] bool HoldsEmptyRow(const ListView& prompts);

// Takes that row out, where it is there, before prompts are added; rows that another program put behind it
// are numbered from 1 then.
void RemoveEmptyRow(ListView& prompts);

} // namespace KAL_AUTO_Node
