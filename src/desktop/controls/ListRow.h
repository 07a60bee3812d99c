#pragma once

#include "nodes/Slots.h"

#include <QString>

#include <vector>

namespace KAL_AUTO_Node {

// The columns of the three lists; the last two are the actions list's alone.
enum Column : int {
    PositionColumn,
    LeadColumn, // "Order", "Entry" or the exception's label
    CommandNodeColumn,
    LabelColumn,
    NodeNameColumn,
    NodeTypeIDColumn,
    NodeNumberColumn,
    DTMFRangeLowColumn,
    DTMFRangeHighColumn,
};

// A row of one of the lists: the reference from a slot of the node to another node.
struct ListRow {
    Slot slot = Slot::Prompts;
    int typeID = 0;
    int number = 0;
    QString name;  // of the type, as it is saved
    QString shown; // the type as it is shown, as another program may have stored it
    QString label; // of the other node, there to be read
    QString low;   // of an action's range; digits: 007 is not 7
    QString high;

    friend bool operator==(const ListRow&, const ListRow&) = default;
};

// What stands behind a row's number in its key.
inline constexpr char KeySuffix = 'a';

// The reference as it is shown.
[[nodiscard]] QString DisplayText(const ListRow& row);

// The text in a column of a row with that number.
[[nodiscard]] QString CellOf(const ListRow& row, int number, int column);

// Rows of a list that stand one after the other.
struct RowRun {
    int first;
    int count;

    friend bool operator==(const RowRun&, const RowRun&) = default;
};

// How rows became others: what was taken out and where something was put in. All others kept their order.
struct RowChange {
    std::vector<RowRun> outAt; // in the list as it was, ascending
    std::vector<ListRow> out;
    std::vector<RowRun> inAt; // in the list as it is, ascending
    std::vector<int> numbers; // of all rows as they were, where those were not their places

    // Rows became others at their places.
    [[nodiscard]] bool InPlace() const { return outAt == inAt; }
};

} // namespace KAL_AUTO_Node
