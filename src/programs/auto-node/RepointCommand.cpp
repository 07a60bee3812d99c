#include "audit/Repoint.h"
#include "auto-node/Arguments.h"
#include "auto-node/CallDiff.h"
#include "auto-node/Changes.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "history/History.h"
#include "platform/RuntimeError.h"
#include "platform/Today.h"
#include "platform/VisibleText.h"
#include "upkeep/RepointRows.h"

#include <iostream>
#include <memory>
#include <sstream>

namespace KAL_AUTO_Node {

namespace {

struct Options {
    Partition partition;
    std::string type;
    std::int16_t number = 0;
    std::string newType;
    std::int16_t newNumber = 0;
    std::string map;
    std::string note;
    std::string plan;
    bool dryRun = false;
    CallOptions calls;

    [[nodiscard]] bool OnlyTells() const { return dryRun || !plan.empty(); }
};

std::vector<Replacement> ReplacementsOf(const Options& options, const TypeNames& names) {
    if (options.map.empty()) {
        return {
            {{names.Meant(options.type), options.number}, {names.Meant(options.newType), options.newNumber}}};
    }
    std::istringstream text(ReadTextFile(options.map));
    try {
        return ReplacementsOf(text, names);
    } catch (const RuntimeError& error) {
        throw RuntimeError(error.Number(), options.map + ", " + error.what());
    }
}

int Run(const Options& options, DataBase& dataBase) {
    const Partition partition = options.partition;
    History history(dataBase, options.note);
    const TypeNames names(dataBase);
    const auto replacements = ReplacementsOf(options, names);
    const RepointPlan plan = Lasting("Repointing", [&] {
        return options.OnlyTells() ? PlanRepoint(dataBase, history, names, partition, replacements)
                                   : Repoint(dataBase, history, names, partition, replacements, Today());
    });
    RequireNoObstacles(plan.obstacles);
    if (!options.plan.empty()) {
        PrintRepointed(plan, names);
        WritePlan(options.plan, RowsOf(dataBase, partition, plan, replacements, Today()));
        return 0;
    }
    if (options.calls.json) {
        return options.calls.Status(PrintCalls(dataBase, partition, plan, true));
    }
    PrintRepointed(plan, names);
    if (plan.changes.empty()) {
        const NodeKey& from = replacements.empty() ? NodeKey() : replacements.front().from;
        std::cout << "Nothing refers to "
                  << (options.map.empty() ? Visible(names.Text(from))
                                          : "the nodes of " + Visible(options.map))
                  << ".\n";
    } else {
        std::cout << (options.dryRun ? "Would change " : "Changed ")
                  << Counted(plan.changes.size(), "reference") << " in "
                  << Counted(plan.Holders().size(), "node") << '\n';
    }
    if (options.calls.calls) {
        std::cout << '\n';
        return options.calls.Status(PrintCalls(dataBase, partition, plan, false));
    }
    return options.calls.Status(!plan.changes.empty());
}

} // namespace

Subcommand RepointCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add(name, "Let all that refers to a node refer to another, in one step or not at all");
    AddPartition(command, options->partition);
    const Option type = AddType(command, "TYPE", options->type);
    AddNumber(command, "NUMBER", options->number, "Number of the node");
    AddType(command, "NEW_TYPE", options->newType);
    const Option last =
        AddNumber(command, "NEW_NUMBER", options->newNumber, "Number of the node that takes its place");
    const Option map = command.Text("--map", options->map, "Many at once: a file with MSG 6 -> MSG 16 a line")
                           .ShownAs("FILE");
    AddNote(command, options->note);
    const Option dryRun = command.Flag("--dry-run", options->dryRun, "Only tell what would change");
    command.Text("--plan", options->plan, "Only write down what would change, for apply")
        .ShownAs("FILE")
        .Excludes(dryRun);
    AddCalls(command, options->calls, dryRun);
    command.Together([type, last, map] {
        if (map.Given() ? type.Given() : !last.Given()) {
            Refuse("repoint", "takes TYPE NUMBER NEW_TYPE NEW_NUMBER, or --map FILE");
        }
    });
    return {command, ByStatus(options->calls.exitCode, [options](const StoreChoice& store) {
                const auto run = [options](DataBase& dataBase) { return Run(*options, dataBase); };
                return (options->OnlyTells() ? Reading(run) : Opening(run))(store);
            })};
}

} // namespace KAL_AUTO_Node
