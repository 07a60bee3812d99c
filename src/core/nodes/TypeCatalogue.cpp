#include "nodes/TypeCatalogue.h"

#include "nodes/Overview.h"
#include "platform/FoldCase.h"
#include "platform/NumericValue.h"
#include "platform/RuntimeError.h"
#include "platform/WholeNumber.h"
#include "store/Batch.h"

#include <algorithm>
#include <limits>

namespace KAL_AUTO_Node {

namespace {

// The highest number of a type for which no limit is stored.
int UnlimitedMax(const NodeLists& lists, int typeID) {
    if (RefersToMessage(typeID)) {
        return lists.MaxNodeNumberCollection[MessageType];
    }
    return typeID == UncheckedCommandType ? UncheckedCommandMax : 0;
}

} // namespace

std::optional<int> ReadMaxNodeNumber(DataBase& dataBase, Partition partition, int typeID) {
    const ResultSet limit = dataBase.Query(Command::Get_Max_NodeNumber, {partition, typeID});
    if (limit.AtEnd()) {
        return std::nullopt;
    }
    return static_cast<int>(std::clamp<std::int64_t>(NumericValue(limit.Text("Max_Number")),
                                                     std::numeric_limits<int>::min(), HighestNodeNumber));
}

std::string AboveHighest(const std::string& node, int highest) {
    return node + " is above the partition's highest number of the type, " + std::to_string(highest);
}

TypeNames::TypeNames(DataBase& dataBase) {
    for (ResultSet rows = dataBase.Query(Command::Get_Node_Names, {}); !rows.AtEnd(); rows.MoveNext()) {
        names_.emplace_back(rows.Number("ID"), rows.Text("English_Name"));
    }
}

std::string TypeNames::Name(int typeID) const {
    const auto found = std::ranges::find(names_, typeID, &std::pair<int, std::string>::first);
    return found == names_.end() ? std::to_string(typeID) : found->second;
}

bool TypeNames::Knows(int typeID) const {
    return std::ranges::find(names_, typeID, &std::pair<int, std::string>::first) != names_.end();
}

std::optional<int> TypeNames::ID(std::string_view name) const {
    const auto found = std::ranges::find(names_, name, &std::pair<int, std::string>::second);
    return found == names_.end() ? std::nullopt : std::optional(found->first);
}

int TypeNames::Meant(const std::string& text) const {
    const std::string folded = FoldCase(text);
    for (const auto& [typeID, name] : names_) {
        if (FoldCase(name) == folded || std::to_string(typeID) == text) {
            return typeID;
        }
    }
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, "There is no node type '" + text + "'");
}

NodeKey TypeNames::MeantNode(std::string_view text) const {
    // The name of a type may have blanks; the number comes last.
    const auto end = text.find_last_not_of(" \t\r");
    text = text.substr(0, end == std::string_view::npos ? 0 : end + 1);
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    const auto blank = text.find_last_of(" \t");
    const auto number =
        blank == std::string_view::npos ? std::nullopt : WholeNumber<std::int16_t>(text.substr(blank + 1));
    if (!number) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                           '\'' + std::string(text) + "' is no node's type and number, such as MSG 12");
    }
    return {Meant(std::string(text.substr(0, text.find_last_not_of(" \t", blank) + 1))), *number};
}

void TypeCatalogue::ReadNames(DataBase& dataBase, Partition partition) {
    for (ResultSet types = dataBase.Query(Command::Get_Node_Names, {}); !types.AtEnd(); types.MoveNext()) {
        const int typeID = types.Number("ID");
        std::string name(types.Text("English_Name"));
        names_.Add(typeID, name);
        NodeNameCollection.Add(std::move(name), typeID);
        const std::optional<int> limit = ReadMaxNodeNumber(dataBase, partition, typeID);
        MaxNodeNumberCollection.Add(limit ? *limit : UnlimitedMax(*this, typeID), typeID);
    }
}

void TypeCatalogue::ReadOffered(DataBase& dataBase, Partition partition, Slot slot, const Offer& offer) {
    const SlotSet& rule = SetOf(slot);
    int messageLimit = 0;
    for (ResultSet types = dataBase.Query(Command::Get_Node_Type_can_contain_nodes, {AutoType, rule.setID});
         !types.AtEnd(); types.MoveNext()) {
        const int typeID = types.Number("Child_Node_Type_ID");
        const std::optional<int> limit = ReadMaxNodeNumber(dataBase, partition, typeID);
        if (typeID == MessageType) {
            messageLimit = std::max(0, limit.value_or(0));
        }
        if (limit ? *limit > 0 : !rule.unlimitedNeedMessages || messageLimit != 0) {
            offer(typeID, NodeNameCollection[typeID]);
            offered_.at(static_cast<std::size_t>(slot)).insert(typeID);
        } else if (limit) {
            (this->*rule.notAvailable).Add(NodeNameCollection[typeID], typeID);
        }
    }
}

void TypeCatalogue::Fetch(ReadAhead& ahead, DataBase& dataBase, Partition partition) {
    ahead.Fetch([&] {
        TypeCatalogue types;
        const auto one = [](auto&& read) {
            try {
                read();
            } catch (const RuntimeError&) {
                return; // those after it are asked for all the same
            }
        };
        one([&] { types.ReadNames(dataBase, partition); });
        for (std::size_t slot = 0; slot < SlotSets.size(); ++slot) {
            one([&] { types.ReadOffered(dataBase, partition, static_cast<Slot>(slot)); });
        }
        one([&] { ReadAutoNodes(dataBase, partition, [](int, const auto&) {}); });
    });
}

void TypeCatalogue::Read(ReadAhead& ahead, DataBase& dataBase, Partition partition) {
    Fetch(ahead, dataBase, partition);
    ReadNames(dataBase, partition);
    for (std::size_t slot = 0; slot < SlotSets.size(); ++slot) {
        ReadOffered(dataBase, partition, static_cast<Slot>(slot));
    }
}

bool TypeCatalogue::HasNumber(const NodeKey& node) const {
    const int* highest = MaxNodeNumberCollection.Find(node.typeID);
    return highest == nullptr || node.number <= *highest;
}

Standing TypeCatalogue::Judge(Slot slot, const NodeKey& target) const {
    if (!offered_.at(static_cast<std::size_t>(slot)).contains(target.typeID)) {
        return NodeNameCollection.Find(target.typeID) == nullptr ? Standing::NotNamed : Standing::NotOffered;
    }
    if (target.typeID == NumberlessTypeOf(slot)) {
        return Standing::Numberless;
    }
    return HasNumber(target) ? Standing::Fine : Standing::BeyondMaximum;
}

int ReadAssignableNumbers(DataBase& dataBase, Partition partition, int typeID) {
    const auto stored = ReadMaxNodeNumber(dataBase, partition, NodeTypeOf(typeID));
    return typeID == UncheckedCommandType ? UncheckedCommandMax : stored.value_or(0);
}

} // namespace KAL_AUTO_Node
