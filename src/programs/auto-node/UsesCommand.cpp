#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "nodes/NodeJson.h"
#include "nodes/NodeTypes.h"
#include "nodes/References.h"
#include "nodes/Templates.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"

#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;

struct Options {
    NodeArguments node;
    bool json = false;
};

int Run(const Options& options, DataBase& dataBase) {
    const Partition partition = options.node.partition;
    const TypeNames names(dataBase);
    const NodeKey node = options.node.Meant(names);
    const auto uses =
        Lasting("Looking for references", [&] { return ReadUses(dataBase, partition, names, node); });
    const std::string name = names.Text(node);
    // What refers to a missing node is worth knowing.
    if (uses.empty() && !IsNodeExisted(dataBase, partition, node)) {
        throw RuntimeError(name + " does not exist, and nothing refers to it");
    }
    const auto labels = Lasting("Reading labels", [&] { return LabelsOfHolders(dataBase, partition, uses); });
    auto document = nlohmann::ordered_json::array();
    Table table({Left, Left, Left, Left});
    for (const StoredReference& use : uses) {
        const std::string& label = labels.at(use.holder);
        const std::string place = PlaceText(use.Column(), use.row);
        if (options.json) {
            document.push_back({{"typeID", use.holder.typeID},
                                {"type", names.Name(use.holder.typeID)},
                                {"number", use.holder.number},
                                {"label", label},
                                {"place", place},
                                {"table", use.Column().table},
                                {"as", use.type}});
        } else {
            table.Add({names.Text(use.holder), label, place, node.Text(use.type)});
        }
    }
    if (options.json) {
        std::cout << JsonText(document) << '\n';
    } else if (uses.empty()) {
        std::cout << "Nothing refers to " << Visible(name) << ".\n";
    } else {
        table.Print(std::cout);
    }
    return 0;
}

} // namespace

Subcommand UsesCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add(name, "List all that refers to a node, whatever the types of the two");
    AddNodeOfAnyType(command, options->node);
    command.Flag("--json", options->json, "Print JSON, for programs");
    return {command, Reading([options](DataBase& dataBase) { return Run(*options, dataBase); })};
}

} // namespace KAL_AUTO_Node
