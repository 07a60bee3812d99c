#include "nodes/References.h"

#include "nodes/AutoNodeReader.h"
#include "nodes/NodeTypes.h"
#include "nodes/Slots.h"
#include "platform/FoldCase.h"
#include "platform/RuntimeError.h"
#include "platform/WholeNumber.h"
#include "store/Batch.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace KAL_AUTO_Node {

namespace {

// Hands over references, of which the rows have the number or not. Of many rows that nobody wants no more
// than what tells that is read.
template <class Wants>
void Read(ResultSet rows, std::optional<int> number,
          const std::function<void(const StoredReference& reference)>& take, const Wants& wants) {
    const std::size_t holderTypeID = rows.Column("HolderTypeID");
    const std::size_t holder = rows.Column("HolderNumber");
    const std::size_t column = rows.Column("ReferenceNo");
    const std::size_t row = rows.Column("RowNo");
    const std::size_t typeID = rows.Column("NodeTypeID");
    const std::size_t type = rows.Column("NodeType");
    const auto numberColumn = number ? std::nullopt : std::optional(rows.Column("NodeNumber"));
    const auto orNothing = [&](std::size_t field) {
        return rows.Field(field) ? std::optional(rows.Number(field)) : std::nullopt;
    };
    for (; !rows.AtEnd(); rows.MoveNext()) {
        const auto to = numberColumn ? orNothing(*numberColumn) : number;
        const auto as = orNothing(typeID);
        if (wants(as, to)) {
            take({{rows.Number(holderTypeID), rows.Number(holder)},
                  static_cast<std::size_t>(rows.Number(column)),
                  rows.Number(row),
                  as,
                  std::string(rows.Field(type).value_or("")),
                  to});
        }
    }
}

bool WantsAll(const std::optional<int>& /*typeID*/, const std::optional<int>& /*number*/) { return true; }

// In the order of their holders.
std::vector<StoredReference> Sorted(std::vector<StoredReference> uses) {
    std::ranges::sort(uses, [](const StoredReference& a, const StoredReference& b) {
        return std::tie(a.holder, a.column, a.row) < std::tie(b.holder, b.column, b.row);
    });
    return uses;
}

} // namespace

bool IsPlayed(const ReferenceColumn& column) {
    return column.table.ends_with("_Prompts") || column.word.ends_with("Prompt");
}

std::string PlaceText(const ReferenceColumn& column, int row) {
    if (column.table.starts_with("Node_")) {
        const auto branch = std::ranges::find(Branches, column.word, &Branch::column);
        return branch != Branches.end() ? branch->label : std::string(column.word);
    }
    std::string place = column.table.ends_with("_Prompts")  ? "prompt "
                        : column.table.ends_with("_Action") ? "action "
                                                            : "row ";
    place += std::to_string(row);
    // Each row of such prompts has the one reference.
    const bool only = column.word.empty() || column.table.ends_with("_Prompts");
    return only ? place : place + ", " + std::string(column.word);
}

void ReadOtherReferences(DataBase& dataBase, Partition partition,
                         const std::function<void(const StoredReference& reference)>& take) {
    Read(dataBase.Query(Command::Get_Other_References, {partition}), std::nullopt, take, WantsAll);
}

std::vector<StoredReference> ReadUses(DataBase& dataBase, Partition partition, const TypeNames& names,
                                      const NodeKey& node) {
    const auto [typeID, number] = node.Itself();
    const bool message = typeID == MessageType;
    const std::array types = {typeID, message ? MessageOnType : typeID, message ? MessageOffType : typeID};
    std::vector<StoredReference> uses;
    Read(
        dataBase.Query(Command::Get_Uses, {partition, number, types[0], types[1], types[2],
                                           names.Name(types[0]), names.Name(types[1]), names.Name(types[2])}),
        number, [&](const StoredReference& use) { uses.push_back(use); }, WantsAll);
    return Sorted(std::move(uses));
}

std::vector<StoredReference> ReadUses(DataBase& dataBase, Partition partition, const TypeNames& names,
                                      const std::set<NodeKey>& nodes) {
    std::vector<StoredReference> uses;
    const auto wants = [&](const std::optional<int>& typeID, const std::optional<int>& number) {
        return number && (!typeID || nodes.contains(NodeKey{*typeID, *number}.Itself()));
    };
    const auto take = [&](const StoredReference& use) {
        const auto typeID = use.Column().hasTypeID ? use.typeID : names.ID(use.type);
        if (typeID && nodes.contains(NodeKey{*typeID, *use.number}.Itself())) {
            uses.push_back(use);
        }
    };
    for (const Command command : {Command::Get_AUTO_References, Command::Get_Other_References}) {
        Read(dataBase.Query(command, {partition}), std::nullopt, take, wants);
    }
    return Sorted(std::move(uses));
}

std::map<NodeKey, std::string> LabelsOfHolders(DataBase& dataBase, Partition partition,
                                               const std::vector<StoredReference>& uses) {
    std::map<NodeKey, std::string> labels;
    for (const StoredReference& use : uses) {
        labels.try_emplace(use.holder);
    }
    ReadAhead(dataBase).Read([&] {
        for (auto& [holder, label] : labels) {
            label = LabelOf(dataBase, partition, holder);
        }
    });
    return labels;
}

} // namespace KAL_AUTO_Node
