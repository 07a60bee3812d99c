#include "upkeep/RepointRows.h"

#include "exchange/TableCursor.h"
#include "platform/WholeNumber.h"
#include "store/DataBase.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

using Changes = std::vector<const RepointPlan::Change*>;

// By the holder's number and the row's.
using ByRow = std::map<std::pair<int, int>, Changes>;

int NumberIn(const StoreTable& table, const StoreRow& row, std::string_view column) {
    return WholeNumber<int>(row[FindColumn(table, column).value()].value_or("")).value_or(0);
}

void Change(const StoreTable& table, StoreRow& row, const RepointPlan::Change& change) {
    const std::string word(change.from.Column().word);
    const auto set = [&](const char* end, const std::string& value) {
        row[FindColumn(table, word + end).value()] = value;
    };
    if (change.from.Column().hasTypeID) {
        set("NodeTypeID", std::to_string(change.typeID));
    }
    set("NodeType", change.type);
    set("NodeNumber", std::to_string(change.number));
}

void AddRows(DataBase& dataBase, Partition partition, const StoreTable& table, const ByRow& changes,
             RowPlan& plan) {
    const ReferenceColumn& example = changes.begin()->second.front()->from.Column();
    for (TableCursor rows(dataBase, table, partition); const StoreRow* row = rows.Row(); rows.Next()) {
        const auto found = changes.find({NumberIn(table, *row, example.holder),
                                         example.HasRows() ? NumberIn(table, *row, example.row) : 0});
        if (found == changes.end()) {
            continue;
        }
        StoreRow after = *row;
        for (const RepointPlan::Change* change : found->second) {
            Change(table, after, *change);
        }
        plan.changes.push_back({&table, *row, std::move(after)});
    }
}

} // namespace

RowPlan RowsOf(DataBase& dataBase, Partition partition, const RepointPlan& repoint,
               std::span<const Replacement> replacements, const std::string& date) {
    RowPlan plan{"repoint", {}, {}};
    std::map<const StoreTable*, ByRow> tables;
    for (const RepointPlan::Change& change : repoint.changes) {
        const StoredReference& use = change.from;
        tables[FindTable(use.Column().table)][{use.holder.number, use.row}].push_back(&change);
    }
    for (const auto& [table, changes] : tables) {
        AddRows(dataBase, partition, *table, changes, plan);
    }
    const auto holders = repoint.Holders();
    std::set<NodeKey> others;
    for (const Replacement& replacement : replacements) {
        others.insert(replacement.to);
    }
    const StoreTable& entries = *FindTable("Node_General_Pool");
    for (TableCursor rows(dataBase, entries, partition); const StoreRow* row = rows.Row(); rows.Next()) {
        const NodeKey node{NumberIn(entries, *row, "NodeTypeID"), NumberIn(entries, *row, "NodeNumber")};
        if (!holders.contains(node) && !others.contains(node)) {
            continue;
        }
        StoreRow after = *row;
        if (holders.contains(node)) {
            after[FindColumn(entries, "DateModified").value()] = date;
        }
        plan.changes.push_back({&entries, *row, std::move(after)});
    }
    std::vector<NodePlace> places;
    for (const NodeKey& holder : holders) {
        if (holder.typeID == AutoType) {
            places.push_back(PlaceOf(partition, holder.number));
        }
    }
    ReadContents(dataBase, places, [&](const NodePlace& place, NodeContent content) {
        plan.nodes[place] = std::move(content);
    });
    return plan;
}

} // namespace KAL_AUTO_Node
