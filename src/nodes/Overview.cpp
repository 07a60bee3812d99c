#include "nodes/Overview.h"

#include "nodes/NodeTypes.h"
#include "nodes/Record.h"

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

void ReadSummaries(DataBase& dataBase, Partition partition,
                   const std::function<void(const AutoNodeSummary&)>& take) {
    for (ResultSet rows =
             dataBase.Query(Command::Get_AUTO_Overview, {partition.config, partition.number, AutoType});
         !rows.AtEnd(); rows.MoveNext()) {
        take({rows.Number16("NodeNumber"), OptionalText(rows, "NodeDescription"), ReadSettings(rows),
              rows.Number("Prompts"), rows.Number("Actions")});
    }
}

} // namespace KAL_AUTO_Node
