#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Table.h"
#include "nodes/NodeJson.h"
#include "store/DataBase.h"

#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;

constexpr const char* Indent = "  ";

void Print(const char* title, const Table& table) {
    std::cout << '\n' << title << '\n';
    table.Print(std::cout);
}

void Print(const NodePlace& place, const AutoNode& node) {
    Table title({Left, Left});
    title.Add({node.type + ' ' + std::to_string(place.number), node.label.value_or("")});
    title.Print(std::cout);
    std::cout << "Configuration " << place.partition.config << ", partition " << place.partition.number
              << '\n';
    Table settings({Left, Left}, Indent);
    for (const SettingField& rule : SettingFields) {
        settings.Add({rule.name, SettingText(rule, node.settings)});
    }
    settings.Add({"terminating digit", TerminatingDigitText(node.settings)});
    Print("Settings", settings);

    Table prompts({Right, Left, Left}, Indent);
    int position = 0;
    for (const Prompt& prompt : node.prompts) {
        prompts.Add(
            {std::to_string(++position), DisplayText(prompt.target, Slot::Prompts), prompt.target.label});
    }
    Print("Prompts", prompts);

    Table actions({Left, Left, Left}, Indent);
    for (const Action& action : node.actions) {
        actions.Add({EntryText(action), DisplayText(action.target, Slot::Actions), action.target.label});
    }
    Print("Actions", actions);

    Table branches({Left, Left, Left}, Indent);
    for (std::size_t i = 0; i < Branches.size(); ++i) {
        const auto& target = node.branches[i];
        branches.Add({Branches[i].label, DisplayText(target, Branches[i].slot), target.label});
    }
    Print("Exceptions", branches);
}

} // namespace

Subcommand ShowCommand(CommandLine& program, const std::string& name) {
    struct Options {
        NodePlace place;
        bool json = false;
    };

    auto options = std::make_shared<Options>();
    const CommandArguments show =
        program.Add(name, "Print one AUTO node: settings, prompts, actions, exceptions");
    AddNode(show, options->place);
    show.Flag("--json", options->json, "Print JSON, for programs");
    return {show, Reading([options](DataBase& dataBase) {
                const NodePlace& place = options->place;
                const AutoNode node = RequireAutoNode(dataBase, place);
                if (options->json) {
                    std::string text;
                    JsonWriter json(text, JsonWriter::Layout::Lines);
                    WriteNode(json, place, node, Labels::Read);
                    std::cout << text << '\n';
                } else {
                    Print(place, node);
                }
                return 0;
            })};
}

} // namespace KAL_AUTO_Node
