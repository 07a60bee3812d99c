#pragma once

#include "audit/Findings.h"
#include "diagram/CallFlow.h"
#include "history/Version.h"
#include "nodes/TypeCatalogue.h"

#include <map>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;

// From where a node is referred to.
struct NodeUse {
    NodeKey holder;
    std::string place; // the keys of an action, or as PlaceText has it
};

// What a node of another type refers to.
struct PlacedReference {
    std::string place;
    Reference target;
};

// All that a report tells of a partition.
struct ReportData {
    TypeNames names;
    CallFlow flow;
    std::map<NodeKey, std::vector<Finding>> findings; // by holder
    std::map<NodeKey, std::vector<NodeUse>> uses;     // by the node that is referred to; holders in order
    std::map<NodeKey, std::vector<PlacedReference>> others; // by the node of another type, in its order
    std::map<int, std::string> recordings;                  // the files of messages, by number
    std::map<int, Version> lastChanges;                     // by the number of the AUTO node
    std::vector<int> entries;                               // the AUTO nodes at which calls may enter

    [[nodiscard]] bool IsMenu(const NodeKey& node) const {
        return node.typeID == AutoType && node.number != TemplateNumber && flow.nodes.contains(node.number);
    }

    [[nodiscard]] const std::vector<NodeUse>& UsesOf(const NodeKey& node) const;
    [[nodiscard]] const std::vector<Finding>& FindingsOf(const NodeKey& node) const;
    [[nodiscard]] std::string LabelOf(const NodeKey& node) const;
};

// Reads the partition once through; in a snapshot, all is of one state.
[[nodiscard]] ReportData ReadReportData(DataBase& dataBase, Partition partition);

} // namespace KAL_AUTO_Node
