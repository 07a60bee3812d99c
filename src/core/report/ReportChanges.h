#pragma once

#include "report/ReportNodes.h"

#include <string>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// What became of an AUTO node.
struct NodeChange {
    std::string label;              // that it has, or had
    std::vector<std::string> words; // as diff has them; none where nothing differs in the end
    std::vector<Version> versions;  // by whom, newest first; where the history tells it
    std::string remark;             // what is not known of it
};

// What differs from a state before, or from another store.
struct ReportChanges {
    std::string from; // "since 2026-11-01 00:00", "against file '/x'"
    std::map<int, NodeChange> nodes;
    std::vector<std::pair<NodeKey, std::string>> others; // nodes of other types, where they are compared
    bool othersCompared = false;

    // None where nothing is known of a change.
    [[nodiscard]] const NodeChange* Of(int number) const;
};

// By the history, which keeps AUTO nodes only; the time is in the form in which times are stored.
[[nodiscard]] ReportChanges ChangesSince(DataBase& dataBase, Partition partition, const ReportData& data,
                                         const std::string& since);
// The same partition of another store, with the labels of nodes of other types and the files of messages.
[[nodiscard]] ReportChanges ChangesAgainst(DataBase& other, Partition partition, const ReportData& data,
                                           const std::string& place);

// One node's changes, as markup.
[[nodiscard]] std::string ChangeMarkup(const NodeChange& change);
// All of them, as a section of the page.
[[nodiscard]] std::string ChangesSection(const ReportChanges& changes, const ReportData& data,
                                         const ReportNodes& nodes);

} // namespace KAL_AUTO_Node
