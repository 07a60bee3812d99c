#pragma once

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

} // namespace KAL_AUTO_Node
