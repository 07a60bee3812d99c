#include "auto-node/Arguments.h"
#include "auto-node/CallDiff.h"
#include "auto-node/Changes.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "history/History.h"
#include "nodes/References.h"
#include "platform/Today.h"
#include "platform/VisibleText.h"
#include "upkeep/RemoveNode.h"

#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

struct Options {
    NodeArguments node;
    std::int16_t newNumber = 0;
    std::vector<std::string> instead; // type, number
    bool forget = false;
    std::string note;
    bool dryRun = false;
    bool exitCode = false;
};

// What becomes of the node, after what refers to it.
int Tell(const RepointPlan& plan, const TypeNames& names, const std::string& done) {
    RequireNoObstacles(plan.obstacles);
    PrintRepointed(plan, names);
    std::cout << done;
    if (!plan.changes.empty()) {
        std::cout << ", " << Counted(plan.changes.size(), "reference") << " in "
                  << Counted(plan.Holders().size(), "node");
    }
    std::cout << '\n';
    return 0;
}

Subcommand OnNode(const CommandArguments& command, const std::shared_ptr<Options>& options,
                  std::function<int(DataBase&, History&, const TypeNames&, const NodeKey&)> run) {
    AddNote(command, options->note);
    AddExitCode(command, options->exitCode,
                command.Flag("--dry-run", options->dryRun, "Only tell what would change"));
    return {command, ByStatus(options->exitCode, [options, run = std::move(run)](const StoreChoice& store) {
                const auto work = [&](DataBase& dataBase) {
                    History history(dataBase, options->note);
                    const TypeNames names(dataBase);
                    const int status = run(dataBase, history, names, options->node.Meant(names));
                    return options->exitCode ? 1 : status;
                };
                return (options->dryRun ? Reading(work) : Opening(work))(store);
            })};
}

} // namespace

Subcommand MoveCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name, "Give a node of any type another number, and let all that refers to it follow, in one step");
    AddNodeOfAnyType(command, options->node);
    AddNumber(command, "NEW_NUMBER", options->newNumber, "The number that it gets").Required();
    return OnNode(
        command, options,
        [options](DataBase& dataBase, History& history, const TypeNames& names, const NodeKey& node) {
            const RepointPlan plan = Lasting("Moving", [&] {
                return MoveNode(dataBase, history, names, options->node.partition, node, options->newNumber,
                                Today(), options->dryRun ? Carry::OnlyTell : Carry::Out);
            });
            return Tell(plan, names,
                        (options->dryRun ? "Would move " : "Moved ") + Visible(names.Text(node)) + " to " +
                            Visible(names.Text({node.typeID, options->newNumber})));
        });
}

Subcommand RemoveCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name, "Take a node away with its rows, where nothing refers to it; restore brings AUTO nodes back");
    AddNodeOfAnyType(command, options->node);
    command.Texts("--repoint", options->instead, "Let all that refers to it refer to that node first")
        .Takes(2, 2)
        .ShownAs("TYPE NUMBER");
    command.Flag("--forget", options->forget, "Also a node of another type, which no history keeps");
    return OnNode(
        command, options,
        [options](DataBase& dataBase, History& history, const TypeNames& names, const NodeKey& node) {
            RemoveOrder order{options->node.partition, node, std::nullopt, options->forget};
            if (!options->instead.empty()) {
                order.instead = {names.Meant(options->instead[0]),
                                 ReadNumber("--repoint", options->instead[1])};
            }
            const RepointPlan plan = Lasting("Removing", [&] {
                return RemoveNode(dataBase, history, names, order, Today(),
                                  options->dryRun ? Carry::OnlyTell : Carry::Out);
            });
            return Tell(plan, names,
                        (options->dryRun ? "Would remove " : "Removed ") + Visible(names.Name(node.typeID)) +
                            ' ' + std::to_string(node.number));
        });
}

} // namespace KAL_AUTO_Node
