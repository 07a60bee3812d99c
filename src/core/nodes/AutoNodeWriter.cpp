#include "nodes/AutoNodeWriter.h"

#include "store/Batch.h"

#include <numeric>

namespace KAL_AUTO_Node {

void DeleteDetails(Batch& batch, const NodePlace& place) {
    for (const Command command : {Command::Delete_AUTO_PromptsNode, Command::Delete_AUTO_ActionsNode}) {
        batch.Add(command, {place});
    }
}

void UpdateRecord(Batch& batch, const NodePlace& place, const AutoNode& node) {
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
                                             place.partition,
                                             place.Key(),
                                         });
}

void AddDetails(Batch& batch, const NodePlace& place, const AutoNode& node) {
    for (const auto& [sequence, target] : node.prompts) {
        batch.Add(Command::Add_AUTO_PromptsNode,
                  {place.partition, sequence, target.typeID, target.number, place.number, target.type});
    }
    for (const auto& [sequence, target, low, high] : node.actions) {
        batch.Add(Command::Add_AUTO_ActionsNode, {place.partition, sequence, target.typeID, target.number,
                                                  place.number, low, high, target.type});
    }
}

void AddWrites(Batch& batch, const NodePlace& place, const AutoNode& node, const std::string& date) {
    DeleteDetails(batch, place);
    UpdateRecord(batch, place, node);
    batch.Add(Command::Update_Node_General_Pool, {node.label, date, place.partition, place.Key()});
    AddDetails(batch, place, node);
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

void WriteAutoNode(DataBase& dataBase, const NodePlace& place, const AutoNode& node,
                   const std::string& date) {
    Batch batch(dataBase);
    AddWrites(batch, place, node, date);
    batch.Run();
}

} // namespace KAL_AUTO_Node
