#pragma once

#include "exchange/Tables.h"
#include "history/NodeContent.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class History;

// A row that changes: as it was, and as it becomes; nothing for no row. One that becomes what it was has only
// to be so still.
struct RowChange {
    const StoreTable* table = nullptr;
    std::optional<StoreRow> before;
    std::optional<StoreRow> after;
};

// A change of a store that is looked at before it is made: rows, and what it rests on, the AUTO nodes that
// they are of, as they were.
struct RowPlan {
    std::string work; // as the history tells it
    std::vector<RowChange> changes;
    std::map<NodePlace, NodeContent> nodes;

    // How many of each kind.
    struct Counts {
        std::size_t removed = 0;
        std::size_t changed = 0;
        std::size_t added = 0;
    };

    [[nodiscard]] Counts Count() const;
};

// The text of a plan, with its version and a sum that tells whether somebody has edited it; removals stand
// first. And back: raises StoreNotRecognized for another text, for a sum that is not right, and for a plan of
// a later version.
[[nodiscard]] std::string TextOf(const RowPlan& plan);
[[nodiscard]] RowPlan PlanIn(const std::string& text);

// Part of a transaction: keeps the AUTO nodes in the history and makes the changes. What is no longer as the
// plan rests on it, for people; then the transaction must not be committed.
[[nodiscard]] std::vector<std::string> CarryOut(DataBase& dataBase, History& history, const RowPlan& plan);

// The same in one step, or nothing; likewise where it is only tried.
enum class Applying { Done, Tried };
[[nodiscard]] std::vector<std::string> Apply(DataBase& dataBase, History& history, const RowPlan& plan,
                                             Applying how = Applying::Done);

} // namespace KAL_AUTO_Node
