#include "nodes/AutoNodeWriter.h"

#include "store/Batch.h"

#include <numeric>

namespace KAL_AUTO_Node {

void DeleteDetails(Batch& batch, Partition partition, std::int16_t number) {
    for (const Command command : {Command::Delete_AUTO_PromptsNode, Command::Delete_AUTO_ActionsNode}) {
        batch.Add(command, {partition.config, partition.number, number});
    }
}

void UpdateRecord(Batch& batch, Partition partition, std::int16_t number, const AutoNode& node) {
    const auto& [timeout, invalid, abort, star, pound] = node.branches;
    batch.Add(Command::Update_AUTO_Node, {
                                             node.settings.numberOfDigits,
                                             node.settings.terminatingDigit,
                                             node.settings.selectionTimeout,
                                             node.settings.digitTimeout,
                                             node.settings.retryLimit,
                                             timeout.type,
                                             timeout.number,
                                             invalid.type,
                                             invalid.number,
                                             abort.type,
                                             abort.number,
                                             node.type,
                                             node.label,
                                             timeout.typeID,
                                             invalid.typeID,
                                             abort.typeID,
                                             star.typeID,
                                             pound.typeID,
                                             star.type,
                                             star.number,
                                             pound.type,
                                             pound.number,
                                             partition.config,
                                             partition.number,
                                             AutoType,
                                             number,
                                         });
}

void AddDetails(Batch& batch, Partition partition, std::int16_t number, const AutoNode& node) {
    for (const auto& [sequence, target] : node.prompts) {
        batch.Add(Command::Add_AUTO_PromptsNode, {partition.config, partition.number, sequence, target.typeID,
                                                  target.number, number, target.type});
    }
    for (const auto& [sequence, target, low, high] : node.actions) {
        batch.Add(Command::Add_AUTO_ActionsNode, {partition.config, partition.number, sequence, target.typeID,
                                                  target.number, number, low, high, target.type});
    }
}

void AddWrites(Batch& batch, Partition partition, std::int16_t number, const AutoNode& node,
               const std::string& date) {
    DeleteDetails(batch, partition, number);
    UpdateRecord(batch, partition, number, node);
    batch.Add(Command::Update_Node_General_Pool,
              {node.label, date, partition.config, partition.number, AutoType, number});
    AddDetails(batch, partition, number, node);
}

std::vector<std::size_t> RowsWritten(const AutoNode& node, bool registered) {
    constexpr std::size_t record = 2; // after the statements that delete
    std::vector<std::size_t> rows(node.prompts.size() + node.actions.size());
    std::iota(rows.begin(), rows.end(), record + 2);
    rows.push_back(record);
    if (registered) {
        rows.push_back(record + 1);
    }
    return rows;
}

void WriteAutoNode(DataBase& dataBase, Partition partition, std::int16_t number, const AutoNode& node,
                   const std::string& date) {
    Batch batch(dataBase);
    AddWrites(batch, partition, number, node, date);
    batch.Run();
}

} // namespace KAL_AUTO_Node
