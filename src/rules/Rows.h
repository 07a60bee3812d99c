#pragma once

#include "controls/ListView.h"
#include "form/References.h"

namespace KAL_AUTO_Node {

// The node that a row refers to.
struct Reference {
    QString nodeName; // the type's
    QString nodeTypeID;
    QString nodeNumber;
};

// How a reference is shown: the type's name and the number, or the name alone where the type has no numbers.
[[nodiscard]] QString DisplayText(const Reference& reference, int numberlessType);

// The rows of the three lists at their position from 1: key, lead cell and what they refer to; without a
// label. A prompt is led by its position, an exception by its name, an action by its range of digits.
[[nodiscard]] ListRow PromptRowAt(int position, const QString& display, const Reference& reference);

[[nodiscard]] ListRow ExceptionRowAt(int position, const QString& name, const QString& display,
                                     const Reference& reference);

[[nodiscard]] ListRow ActionRowAt(int position, const QString& low, const QString& high,
                                  const QString& display, const Reference& reference);

// The row that stands in a prompts list without prompts.
[[nodiscard]] ListRow EmptyRow(const QString& name);

// Whether the prompts list holds the row above instead of prompts.
[[nodiscard]] bool HoldsEmptyRow(const ListView& prompts);

} // namespace KAL_AUTO_Node
