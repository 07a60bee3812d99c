#pragma once

#include "controls/ListView.h"

#include <QString>

#include <span>
#include <vector>

namespace KAL_AUTO_Node {

class GUI;

// Rows of the window's lists as text that other windows and spreadsheets take: a line for each row, its cells
// between tabs. First what leads a row, where that is more than its position (both ends of an action's range,
// an exception's name), then the type that it refers to, the number (empty where such references carry none)
// and the label, which is there to be read.

enum class RowKind { Prompts, Actions, Exceptions };

[[nodiscard]] QString TextOfRows(RowKind kind, const ListView& list, std::span<const int> rows);

struct PastedRows {
    std::vector<ListRow> rows; // without labels
    QString refusal;           // why there are none; names the line
};

// The rows of such a text, which may come from anywhere: it holds at least one, and every one refers to what
// a person could choose in that list, or nothing of it is taken.
[[nodiscard]] PastedRows RowsOfText(RowKind kind, const GUI& gui, const QString& text);

} // namespace KAL_AUTO_Node
