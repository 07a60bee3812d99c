#include "nodes/AutoNodeReader.h"

#include "nodes/Record.h"

namespace KAL_AUTO_Node {

// Where a reference stands; an exception branch's columns have its name before their own.
struct AutoNodeReader::Columns {
    explicit Columns(const ResultSet& rows, const std::string& branch = "")
        : typeID(rows.Column(branch + "NodeTypeID")), type(rows.Column(branch + "NodeType")),
          number(rows.Column(branch + "NodeNumber")) {}

    std::size_t typeID;
    std::size_t type;
    std::size_t number;
};

std::string LabelOf(DataBase& dataBase, Partition partition, int typeID, int number) {
    const ResultSet node =
        dataBase.Query(Command::Get_Description, {partition.config, partition.number, typeID, number});
    return node.AtEnd() ? std::string() : std::string(node.Field("NodeDescription").value_or(""));
}

Reference AutoNodeReader::ReadReference(const ResultSet& row, const Columns& columns) {
    Reference reference{
        row.Number(columns.typeID), std::string(row.Text(columns.type)), row.Number(columns.number), {}};
    if (labels_ == Labels::Read) {
        reference.label = LabelOf(dataBase_, partition_, reference.typeID, reference.number);
    }
    return reference;
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
    const auto add = [&](const ResultSet& row, const Columns& columns) {
        ReadLabelAhead(ahead, partition_, row.Number(columns.typeID), row.Number(columns.number));
    };
    for (const BranchRule& branch : BranchRules) {
        add(*record_, Columns(*record_, branch.column));
    }
    for (const Command list : {Command::Get_AUTO_PromptsNode, Command::Get_AUTO_ActionsNode}) {
        ResultSet rows = dataBase_.Query(list, {partition_.config, partition_.number, number_});
        for (const Columns columns(rows); !rows.AtEnd(); rows.MoveNext()) {
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
    node.type = record_->Field("NodeType").value_or("");
    node.label = OptionalText(*record_, "NodeDescription");
    node.settings = ReadSettings(*record_);
    if (ahead.Helps() && labels_ == Labels::Read) {
        ReadLabelsAhead(ahead);
        ahead.Fetch();
    }
    return true;
}

template <class Item, class ColumnsBeside>
void AutoNodeReader::ReadItems(Command command, std::vector<Item>& items, ColumnsBeside columnsBeside) {
    items.clear();
    ResultSet rows = dataBase_.Query(command, {partition_.config, partition_.number, number_});
    const Columns columns(rows);
    const std::size_t sequence = rows.Column("SequenceNo");
    const auto fill = columnsBeside(rows);
    for (; !rows.AtEnd(); rows.MoveNext()) {
        Item item;
        item.target = ReadReference(rows, columns);
        item.sequence = rows.Number(sequence);
        fill(item);
        items.push_back(std::move(item));
    }
}

void AutoNodeReader::ReadPrompts(AutoNode& node) {
    ReadItems(Command::Get_AUTO_PromptsNode, node.prompts, [](const ResultSet&) { return [](Prompt&) {}; });
}

void AutoNodeReader::ReadActions(AutoNode& node) {
    ReadItems(Command::Get_AUTO_ActionsNode, node.actions, [](const ResultSet& rows) {
        return
            [&rows, low = rows.Column("DTMFRangeLow"), high = rows.Column("DTMFRangeHigh")](Action& action) {
                action.low = rows.Field(low);
                action.high = rows.Field(high);
            };
    });
}

void AutoNodeReader::ReadBranch(AutoNode& node, std::size_t branch) {
    node.branches.at(branch) = ReadReference(*record_, Columns(*record_, BranchRules.at(branch).column));
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
