#include "audit/PartitionCheck.h"
#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "nodes/FindNodes.h"
#include "nodes/NodeJson.h"
#include "store/DataBase.h"

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;

struct Options {
    std::string text;
    Partition partition;
    bool onePartition = false;
    bool json = false;
};

int Run(const Options& options, DataBase& dataBase) {
    const TypeNames names(dataBase);
    auto document = nlohmann::ordered_json::array();
    Table table({Right, Right, Left, Left, Left});
    bool any = false;
    for (const Partition& partition :
         options.onePartition ? std::vector{options.partition} : PartitionsWithRows(dataBase)) {
        for (const auto& [node, label, uses] : Lasting(
                 "Looking for nodes", [&] { return FindNodes(dataBase, partition, names, options.text); })) {
            any = true;
            if (options.json) {
                document.push_back({{"config", partition.config},
                                    {"partition", partition.number},
                                    {"typeID", node.typeID},
                                    {"type", names.Name(node.typeID)},
                                    {"number", node.number},
                                    {"label", label},
                                    {"uses", uses}});
            } else {
                table.Add({std::to_string(partition.config), std::to_string(partition.number),
                           node.Text(names.Name(node.typeID)), label, Counted(uses, "reference")});
            }
        }
    }
    if (options.json) {
        std::cout << JsonText(document) << '\n';
    } else if (any) {
        table.Print(std::cout);
    } else {
        std::cout << "No node is found.\n";
    }
    return 0;
}

} // namespace

Subcommand FindCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add(name, "Find nodes of every type by words of their labels, by number or by type");
    const auto text = [options](const std::string& words) {
        if (words.find_first_not_of(" \t\r\n") == std::string::npos) {
            Refuse("TEXT", "has no word");
        }
        options->text = words;
    };
    command.Word("TEXT", text, "Words, each of which the label has, or that are number or type")
        .Required()
        .ShownAs("");
    const Option partition = AddAnyPartition(command, options->partition);
    command.Flag("--json", options->json, "Print JSON, for programs");
    return {command, Reading([options, partition](DataBase& dataBase) {
                options->onePartition = partition.Given();
                return Run(*options, dataBase);
            })};
}

} // namespace KAL_AUTO_Node
