#include "nodes/AutoNodeReader.h"

#include "nodes/NodeTypes.h"
#include "nodes/Record.h"
#include "store/Batch.h"

#include <algorithm>

namespace KAL_AUTO_Node {

std::string LabelOf(DataBase& dataBase, Partition partition, const NodeKey& node) {
    const ResultSet row = dataBase.Query(Command::Get_Description, {partition, node});
    return row.AtEnd() ? std::string() : std::string(row.Field("NodeDescription").value_or(""));
}

int AutoNodeReader::LabelledType(int typeID) const {
    return labels_ == Labels::ReadOfNodes ? NodeTypeOf(typeID) : typeID;
}

void AutoNodeReader::ReadLabel(Reference& reference) {
    if (labels_ != Labels::Leave) {
        reference.label =
            LabelOf(dataBase_, place_.partition, {LabelledType(reference.typeID), reference.number});
    }
}

bool AutoNodeReader::ReadRecord(AutoNode& node) {
    record_.reset();
    record_.emplace(dataBase_.Query(Command::Get_AUTO_Node, {place_, AutoType}));
    if (record_->AtEnd()) {
        return false;
    }
    KAL_AUTO_Node::ReadRecord(*record_, node);
    return true;
}

template <class Columns, class Item>
void AutoNodeReader::ReadItems(Command command, std::vector<Item>& items) {
    items.clear();
    ResultSet rows = dataBase_.Query(command, {place_});
    for (const Columns columns(rows); !rows.AtEnd(); rows.MoveNext()) {
        Item item = columns.Read(rows);
        ReadLabel(item.target);
        items.push_back(std::move(item));
    }
}

void AutoNodeReader::ReadPrompts(AutoNode& node) {
    ReadItems<PromptColumns>(Command::Get_AUTO_PromptsNode, node.prompts);
}

void AutoNodeReader::ReadActions(AutoNode& node) {
    ReadItems<ActionColumns>(Command::Get_AUTO_ActionsNode, node.actions);
}

void AutoNodeReader::ReadBranch(AutoNode& node, std::size_t branch) {
    Reference& target = node.branches.at(branch);
    target = ReferenceColumns(*record_, Branches.at(branch).column).Read(*record_);
    ReadLabel(target);
}

std::optional<AutoNode> ReadAutoNode(DataBase& dataBase, const NodePlace& place, Labels labels) {
    std::optional<AutoNode> found;
    ReadAhead(dataBase).Read([&] {
        AutoNode node;
        AutoNodeReader reader(dataBase, place, labels);
        const bool exists = reader.ReadRecord(node);
        // Whether or not the record is known yet.
        reader.ReadPrompts(node);
        reader.ReadActions(node);
        for (std::size_t branch = 0; exists && branch < Branches.size(); ++branch) {
            reader.ReadBranch(node, branch);
        }
        found = exists ? std::optional(std::move(node)) : std::nullopt;
    });
    return found;
}

void ReadLabels(DataBase& dataBase, Partition partition, AutoNode& node) {
    const auto read = [&](Reference& reference) {
        reference.label = LabelOf(dataBase, partition, {reference.typeID, reference.number});
    };
    for (Prompt& prompt : node.prompts) {
        read(prompt.target);
    }
    for (Action& action : node.actions) {
        read(action.target);
    }
    std::ranges::for_each(node.branches, read);
}

bool AutoNodeExists(DataBase& dataBase, const NodePlace& place) {
    return !dataBase.Query(Command::Get_AUTO_Node, {place, AutoType}).AtEnd();
}

} // namespace KAL_AUTO_Node
