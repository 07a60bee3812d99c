#pragma once

#include <span>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// A place of the store's tables in which nodes refer to others: a type and a number. Its columns begin with a
// word, or with none, and end in NodeTypeID, NodeType and NodeNumber.
struct ReferenceColumn {
    std::string_view table;
    int holderTypeID;        // of the nodes whose rows these are
    std::string_view holder; // column of their number
    std::string_view row;    // column of the row's number where a node has several of them, else "0"
    std::string_view word;
    bool hasTypeID; // otherwise the type's name stands for it

    [[nodiscard]] bool HasRows() const { return row != "0"; }
};

// All of them, of the nodes of every type.
[[nodiscard]] std::span<const ReferenceColumn> AllReferenceColumns();

// The statements over all of them, each of which says by ReferenceNo which of the columns a row is of. Who
// reads the rows puts them in order: an engine would sort those of each column by themselves first.
[[nodiscard]] std::string UsesStatement();            // all that refers to a node
[[nodiscard]] std::string OtherReferencesStatement(); // what the nodes refer to that are no AUTO nodes
[[nodiscard]] std::string AutoReferencesStatement();  // what AUTO nodes refer to

// Lets one row that refers to a node in one of them refer to another. Parameters: the new type's ID, where
// the column has one, its name, the new number; configuration, partition, the old number, the old type, by
// its ID or its name, the holder's number, and the row's where a holder has several.
[[nodiscard]] std::string RepointStatement(const ReferenceColumn& column);

} // namespace KAL_AUTO_Node
