#include "nodes/ReferenceData.h"

#include "platform/NumericValue.h"
#include "platform/RuntimeError.h"
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

void FetchLists(ReadAhead& ahead, DataBase& dataBase, Partition partition) {
    ahead.Fetch([&] {
        NodeLists lists;
        const auto ignore = [](int, const auto&) {};
        const auto one = [](auto&& read) {
            try {
                read();
            } catch (const RuntimeError&) {
                return; // those after it are asked for all the same
            }
        };
        one([&] { ReadNodeNames(dataBase, partition, lists); });
        for (std::size_t slot = 0; slot < SlotRules.size(); ++slot) {
            one([&] { ReadContainableTypes(dataBase, partition, static_cast<Slot>(slot), lists, ignore); });
        }
        one([&] { ReadAutoNodes(dataBase, partition, ignore); });
    });
}

void ReadNodeNames(DataBase& dataBase, Partition partition, NodeLists& lists) {
    for (ResultSet types = dataBase.Query(Command::Get_Node_Names, {}); !types.AtEnd(); types.MoveNext()) {
        const int typeID = types.Number("ID");
        lists.NodeNameCollection.Add(std::string(types.Text("English_Name")), typeID);
        const std::optional<int> limit = ReadMaxNodeNumber(dataBase, partition, typeID);
        lists.MaxNodeNumberCollection.Add(limit ? *limit : UnlimitedMax(lists, typeID), typeID);
    }
}

void ReadContainableTypes(DataBase& dataBase, Partition partition, Slot slot, NodeLists& lists,
                          const std::function<void(int typeID, const std::string& name)>& offer) {
    const SlotRule& rule = RuleOf(slot);
    int messageLimit = 0;
    for (ResultSet types = dataBase.Query(Command::Get_Node_Type_can_contain_nodes, {AutoType, rule.setID});
         !types.AtEnd(); types.MoveNext()) {
        const int typeID = types.Number("Child_Node_Type_ID");
        const std::optional<int> limit = ReadMaxNodeNumber(dataBase, partition, typeID);
        if (typeID == MessageType) {
            messageLimit = std::max(0, limit.value_or(0));
        }
        if (limit ? *limit > 0 : !rule.unlimitedNeedMessages || messageLimit != 0) {
            offer(typeID, lists.NodeNameCollection[typeID]);
        } else if (limit) {
            (lists.*rule.notAvailable).Add(lists.NodeNameCollection[typeID], typeID);
        }
    }
}

int ReadAssignableNumbers(DataBase& dataBase, Partition partition, int typeID) {
    const std::optional<int> stored =
        ReadMaxNodeNumber(dataBase, partition, RefersToMessage(typeID) ? MessageType : typeID);
    return typeID == UncheckedCommandType ? UncheckedCommandMax : stored.value_or(0);
}

void ReadAutoNodes(DataBase& dataBase, Partition partition,
                   const std::function<void(std::int16_t number, std::string_view label)>& take) {
    ResultSet nodes = dataBase.Query(Command::Get_All_AUTO_Nodes, {partition, AutoType});
    const std::size_t number = nodes.Column("NodeNumber");
    const std::size_t label = nodes.Column("NodeDescription");
    for (; !nodes.AtEnd(); nodes.MoveNext()) {
        take(nodes.Number16(number), nodes.Field(label).value_or(""));
    }
}

} // namespace KAL_AUTO_Node
