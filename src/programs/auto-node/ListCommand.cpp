#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Table.h"
#include "nodes/NodeJson.h"
#include "nodes/Overview.h"
#include "store/DataBase.h"

#include <algorithm>
#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;

struct Options {
    Partition partition;
    bool json = false;
};

std::string Number(const std::optional<std::int64_t>& number) {
    return number ? std::to_string(*number) : "-";
}

void ListPartitions(DataBase& dataBase, bool json) {
    const auto partitions = ReadPartitions(dataBase);
    if (json) {
        std::string text;
        JsonWriter document(text, JsonWriter::Layout::Lines);
        document.Begin('[');
        for (const PartitionCounts& counts : partitions) {
            WriteCounts(document, counts);
        }
        document.End(']');
        std::cout << text << '\n';
        return;
    }
    Table table({Right, Right, Right, Right});
    table.Add({"Configuration", "Partition", "AUTO nodes", "All nodes"});
    for (const auto& [partition, autoNodes, registeredNodes] : partitions) {
        table.Add({std::to_string(partition.config), std::to_string(partition.number),
                   std::to_string(autoNodes), std::to_string(registeredNodes)});
    }
    table.Print(std::cout);
}

void ListNodes(DataBase& dataBase, Partition partition, bool json) {
    std::string text;
    JsonWriter document(text, JsonWriter::Layout::Lines);
    document.Begin('[');
    Table table({Right, Left, Right, Right, Right, Left, Right, Right, Right});
    table.Add({"Node", "Label", "Prompts", "Actions", "Digits", "End", "Retries", "Selection s", "Digit s"});
    bool any = false;
    ReadSummaries(dataBase, partition, [&](const AutoNodeSummary& node) {
        any = true;
        if (json) {
            WriteSummary(document, node);
            return;
        }
        const Settings& settings = node.settings;
        table.Add({std::to_string(node.number), node.label.value_or(""), std::to_string(node.prompts),
                   std::to_string(node.actions), Number(settings.numberOfDigits),
                   settings.terminatingDigit.value_or("-"), Number(settings.retryLimit),
                   Number(settings.selectionTimeout), Number(settings.digitTimeout)});
    });
    if (!any) {
        const auto all = ReadPartitions(dataBase);
        if (std::ranges::find(all, partition, &PartitionCounts::partition) == all.end()) {
            FailWithoutNodes(partition);
        }
    }
    if (json) {
        document.End(']');
        std::cout << text << '\n';
    } else {
        table.Print(std::cout);
    }
}

} // namespace

Subcommand ListCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments list = program.Add(name, "List the partitions, or the AUTO nodes of one");
    const Option partition = AddAnyPartition(list, options->partition);
    list.Flag("--json", options->json, "Print JSON, for programs");
    return {list, Reading([options, partition](DataBase& dataBase) {
                if (partition.Given()) {
                    ListNodes(dataBase, options->partition, options->json);
                } else {
                    ListPartitions(dataBase, options->json);
                }
                return 0;
            })};
}

} // namespace KAL_AUTO_Node
