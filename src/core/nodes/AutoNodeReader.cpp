#include "nodes/AutoNodeReader.h"

#include "nodes/NodeTypes.h"
#include "nodes/Record.h"

namespace KAL_AUTO_Node {

std::string LabelOf(DataBase& dataBase, Partition partition, int typeID, int number) {
    const ResultSet node =
        dataBase.Query(Command::Get_Description, {partition.config, partition.number, typeID, number});
    return node.AtEnd() ? std::string() : std::string(node.Field("NodeDescription").value_or(""));
}

int AutoNodeReader::LabelledType(int typeID) const {
    return labels_ == Labels::ReadOfNodes ? NodeTypeOf(typeID) : typeID;
}

void AutoNodeReader::ReadLabel(Reference& reference) {
    if (labels_ != Labels::Leave) {
        reference.label = LabelOf(dataBase_, partition_, LabelledType(reference.typeID), reference.number);
    }
}

void ReadLabelAhead(ReadAhead& ahead, Partition partition, int typeID, int number) {
    ahead.Add(Command::Get_Description, {partition.config, partition.number, typeID, number});
}

void ReadAutoNodeAhead(ReadAhead& ahead, Partition partition, std::int16_t number) {
    ahead.Add(Command::Get_AUTO_Node, {partition.config, partition.number, number, AutoType});
    ahead.Add(Command::Get_AUTO_PromptsNode, {partition.config, partition.number, number});
    ahead.Add(Command::Get_AUTO_ActionsNode, {partition.config, partition.number, number});
}

// The rows of both lists are here by now; what cannot be read of them is told when they are read.
void AutoNodeReader::ReadLabelsAhead(ReadAhead& ahead) try {
    const auto add = [&](const ResultSet& row, const ReferenceColumns& columns) {
        ReadLabelAhead(ahead, partition_, LabelledType(columns.TypeID(row)), columns.Number(row));
    };
    for (const BranchRule& branch : BranchRules) {
        add(*record_, ReferenceColumns(*record_, branch.column));
    }
    for (const Command list : {Command::Get_AUTO_PromptsNode, Command::Get_AUTO_ActionsNode}) {
        ResultSet rows = dataBase_.Query(list, {partition_.config, partition_.number, number_});
        for (const ReferenceColumns columns(rows); !rows.AtEnd(); rows.MoveNext()) {
            add(rows, columns);
        }
    }

} catch (const RuntimeError&) {

    return;
}

bool AutoNodeReader::ReadRecord(AutoNode& node) {
    record_.reset();
    ReadAhead& ahead = ahead_.emplace(dataBase_);
    ReadAutoNodeAhead(ahead, partition_, number_);
    ahead.Fetch();
    record_.emplace(
        dataBase_.Query(Command::Get_AUTO_Node, {partition_.config, partition_.number, number_, AutoType}));
    if (record_->AtEnd()) {
        return false;
    }
    KAL_AUTO_Node::ReadRecord(*record_, node);
    if (ahead.Helps() && labels_ != Labels::Leave) {
        ReadLabelsAhead(ahead);
        ahead.Fetch();
    }
    return true;
}

template <class Columns, class Item>
void AutoNodeReader::ReadItems(Command command, std::vector<Item>& items) {
    items.clear();
    ResultSet rows = dataBase_.Query(command, {partition_.config, partition_.number, number_});
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
    target = ReferenceColumns(*record_, BranchRules.at(branch).column).Read(*record_);
    ReadLabel(target);
}

std::optional<AutoNode> ReadAutoNode(DataBase& dataBase, Partition partition, std::int16_t number,
                                     Labels labels) {
    AutoNode node;
    AutoNodeReader reader(dataBase, partition, number, labels);
    if (!reader.ReadRecord(node)) {
        return std::nullopt;
    }
    reader.ReadPrompts(node);
    reader.ReadActions(node);
    for (std::size_t branch = 0; branch < BranchRules.size(); ++branch) {
        reader.ReadBranch(node, branch);
    }
    return node;
}

bool AutoNodeExists(DataBase& dataBase, Partition partition, std::int16_t number) {
    return !dataBase.Query(Command::Get_AUTO_Node, {partition.config, partition.number, number, AutoType})
                .AtEnd();
}

} // namespace KAL_AUTO_Node
