#include "nodes/AutoNodeWriter.h"

#include "platform/RuntimeError.h"
#include "store/DataBase.h"

namespace KAL_AUTO_Node {

namespace {

// Before anything is written, so that nothing is lost for a value that is not there.
void RequireSettings(const Settings& settings) {
    const auto require = [](bool there, const char* column) {
        if (!there) {
            throw RuntimeError(ErrorNumber::InvalidUseOfNull,
                               std::string("Invalid use of Null: ") + column + " of the node to be saved");
        }
    };
    for (const SettingRule& rule : SettingRules) {
        require((settings.*rule.value).has_value(), rule.column);
    }
    require(settings.terminatingDigit.has_value(), "TerminatingDigit");
}

void WriteRecord(DataBase& dataBase, Partition partition, std::int16_t number, const AutoNode& node) {
    const auto& [timeout, invalid, abort, star, pound] = node.branches;
    dataBase.Execute(Command::Update_AUTO_Node, {
                                                    *node.settings.numberOfDigits,
                                                    *node.settings.terminatingDigit,
                                                    *node.settings.selectionTimeout,
                                                    *node.settings.digitTimeout,
                                                    *node.settings.retryLimit,
                                                    timeout.type,
                                                    timeout.number,
                                                    invalid.type,
                                                    invalid.number,
                                                    abort.type,
                                                    abort.number,
                                                    node.type,
                                                    node.label.value_or(""),
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

} // namespace

void WriteAutoNode(DataBase& dataBase, Partition partition, std::int16_t number, const AutoNode& node,
                   const std::string& date) {
    RequireSettings(node.settings);
    for (const Command command : {Command::Delete_AUTO_PromptsNode, Command::Delete_AUTO_ActionsNode}) {
        dataBase.Execute(command, {partition.config, partition.number, number});
    }
    WriteRecord(dataBase, partition, number, node);
    dataBase.Execute(Command::Update_Node_General_Pool,
                     {node.label.value_or(""), date, partition.config, partition.number, AutoType, number});
    int sequence = 0;
    for (const Prompt& prompt : node.prompts) {
        dataBase.Execute(Command::Add_AUTO_PromptsNode,
                         {partition.config, partition.number, ++sequence, prompt.target.typeID,
                          prompt.target.number, number, prompt.target.type});
    }
    sequence = 0;
    for (const Action& action : node.actions) {
        const auto [low, high] = RangeOf(action);
        dataBase.Execute(Command::Add_AUTO_ActionsNode,
                         {partition.config, partition.number, ++sequence, action.target.typeID,
                          action.target.number, number, low, high, action.target.type});
    }
}

} // namespace KAL_AUTO_Node
