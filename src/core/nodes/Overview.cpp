#include "nodes/Overview.h"

#include "nodes/NodeTypes.h"
#include "nodes/Record.h"
#include "store/DataBase.h"

#include <algorithm>

namespace KAL_AUTO_Node {

std::vector<PartitionCounts> ReadPartitions(DataBase& dataBase) {
    std::vector<PartitionCounts> partitions;
    for (ResultSet rows = dataBase.Query(Command::Get_Partitions, {}); !rows.AtEnd(); rows.MoveNext()) {
        partitions.push_back({{rows.Number16("ConfigID"), rows.Number16("PartID")},
                              rows.Number("AutoNodes"),
                              rows.Number("RegisteredNodes")});
    }
    return partitions;
}

void ReadRegister(
    DataBase& dataBase, Partition partition,
    const std::function<void(const NodeKey& node, std::string_view type, std::string_view label)>& take) {
    ResultSet rows = dataBase.Query(Command::Get_Register, {partition});
    const std::size_t typeID = rows.Column("NodeTypeID");
    const std::size_t number = rows.Column("NodeNumber");
    const std::size_t type = rows.Column("NodeType");
    const std::size_t label = rows.Column("NodeDescription");
    for (; !rows.AtEnd(); rows.MoveNext()) {
        take({rows.Number(typeID), rows.Number(number)}, rows.Field(type).value_or(""),
             rows.Field(label).value_or(""));
    }
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

std::optional<NodePlace> FirstAutoNode(DataBase& dataBase) {
    const auto partitions = ReadPartitions(dataBase);
    const auto found =
        std::ranges::find_if(partitions, [](const PartitionCounts& counts) { return counts.autoNodes > 0; });
    if (found == partitions.end()) {
        return std::nullopt;
    }
    NodePlace place{found->partition, TemplateNumber};
    ReadAutoNodes(dataBase, found->partition, [&](std::int16_t number, std::string_view) {
        place.number = place.number == TemplateNumber ? number : place.number;
    });
    return place;
}

void ReadSummaries(DataBase& dataBase, Partition partition,
                   const std::function<void(const AutoNodeSummary&)>& take) {
    for (ResultSet rows = dataBase.Query(Command::Get_AUTO_Overview, {partition, AutoType}); !rows.AtEnd();
         rows.MoveNext()) {
        take({rows.Number16("NodeNumber"), OptionalText(rows, "NodeDescription"), ReadSettings(rows),
              rows.Number("Prompts"), rows.Number("Actions")});
    }
}

} // namespace KAL_AUTO_Node
