#include "audit/Repoint.h"
#include "auto-node/Arguments.h"
#include "auto-node/CallDiff.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "history/History.h"
#include "platform/Today.h"
#include "platform/VisibleText.h"

#include <iostream>
#include <memory>
#include <set>
#include <stdexcept>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;

struct Options {
    Partition partition;
    std::string type;
    std::int16_t number = 0;
    std::string newType;
    std::int16_t newNumber = 0;
    bool dryRun = false;
    CallOptions calls;
};

int Run(const Options& options, DataBase& dataBase) {
    const Partition partition = options.partition;
    History history(dataBase);
    const TypeNames names(dataBase);
    const NodeID from{names.Meant(options.type), options.number};
    const NodeID to{names.Meant(options.newType), options.newNumber};
    const RepointPlan plan = Lasting("Repointing", [&] {
        return options.dryRun ? PlanRepoint(dataBase, history, names, partition, from, to)
                              : Repoint(dataBase, history, names, partition, from, to, Today());
    });
    if (!plan.obstacles.empty()) {
        std::string text = "nothing is changed:";
        for (const std::string& obstacle : plan.obstacles) {
            text += "\n  " + Visible(obstacle);
        }
        throw std::runtime_error(text);
    }
    if (options.calls.json) {
        PrintCalls(dataBase, partition, plan, to.number, true);
        return 0;
    }
    Table table({Left, Left, Left});
    std::set<std::pair<int, int>> holders;
    for (const auto& [use, typeID, type] : plan.changes) {
        holders.emplace(use.holderTypeID, use.holder);
        std::string change = use.type + ' ' + std::to_string(options.number);
        change += " \u2192 " + type + ' ' + std::to_string(options.newNumber);
        table.Add({names.Name(use.holderTypeID) + ' ' + std::to_string(use.holder),
                   PlaceText(use.Column(), use.row), change});
    }
    table.Print(std::cout);
    if (plan.changes.empty()) {
        std::cout << "Nothing refers to " << Visible(names.Name(from.typeID)) << ' ' << from.number << ".\n";
    } else {
        std::cout << (options.dryRun ? "Would change " : "Changed ")
                  << Counted(plan.changes.size(), "reference") << " in " << Counted(holders.size(), "node")
                  << '\n';
    }
    if (options.calls.calls) {
        std::cout << '\n';
        PrintCalls(dataBase, partition, plan, to.number, false);
    }
    return 0;
}

} // namespace

Subcommand RepointCommand(CommandLine& program) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add("repoint", "Let all that refers to a node refer to another, in one step or not at all");
    AddPartition(command, options->partition);
    AddType(command, "TYPE", options->type);
    AddNumber(command, "NUMBER", options->number, "Number of the node").Required();
    AddType(command, "NEW_TYPE", options->newType);
    AddNumber(command, "NEW_NUMBER", options->newNumber, "Number of the node that takes its place")
        .Required();
    const Option dryRun = command.Flag("--dry-run", options->dryRun, "Only tell what would change");
    AddCalls(command, options->calls, dryRun);
    return {command, [options](const StoreChoice& store) {
                const auto run = [options](DataBase& dataBase) { return Run(*options, dataBase); };
                return (options->dryRun ? Reading(run) : Opening(run))(store);
            }};
}

} // namespace KAL_AUTO_Node
