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
[[nodiscard]] inline QString DisplayText(const Reference& reference, int numberlessType) {
    return reference.nodeTypeID.toInt() == numberlessType ? reference.nodeName
                                                          : reference.nodeName + ' ' + reference.nodeNumber;
}

// A row at its position from 1: key, lead cell and what it refers to; without a label.
[[nodiscard]] ListRow RowAt(int position, const QString& lead, const QString& display,
                            const Reference& reference);

// The same, as an action for a range of digits.
[[nodiscard]] ListRow ActionRowAt(int position, const QString& low, const QString& high,
                                  const QString& display, const Reference& reference);

// The row that stands in a prompts list without prompts.
[[nodiscard]] ListRow EmptyRow(const QString& name);

// Whether the prompts list holds the row above instead of prompts.
[[nodiscard]] bool HoldsEmptyRow(const ListView& prompts);

} // namespace KAL_AUTO_Node
