#include "auto-node/Arguments.h"
#include "auto-node/CallDiff.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "history/History.h"
#include "nodes/References.h"
#include "platform/Today.h"
#include "platform/VisibleText.h"
#include "upkeep/CopyNode.h"

#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

struct Options {
    NodeArguments node;
    std::int16_t number = 0;
    std::vector<std::int16_t> to; // configuration, partition
    std::string label;
    bool labelled = false;
    std::string missing;
    std::string note;
    bool dryRun = false;
    bool exitCode = false;
};

int Run(const Options& options, DataBase& dataBase) {
    History history(dataBase, options.note);
    const TypeNames names(dataBase);
    const NodeKey node = options.node.Meant(names);
    const Partition from = options.node.partition;
    const Partition to = options.to.empty() ? from : Partition{options.to[0], options.to[1]};
    const auto missing = options.missing == "keep"     ? Missing::Keep
                         : options.missing == "create" ? Missing::Create
                                                       : Missing::Refuse;
    const CopyReport report = Lasting("Copying", [&] {
        return CopyNode(dataBase, history, names,
                        {from, node, to, options.number,
                         options.labelled ? std::optional(options.label) : std::nullopt, missing},
                        Today(), options.dryRun ? Carry::OnlyTell : Carry::Out);
    });
    RequireNoObstacles(report.obstacles);
    std::cout << (options.dryRun ? "Would make " : "Made ")
              << Visible(names.Text({node.typeID, options.number})) << (to != from ? " of " + to.Text() : "")
              << " of " << Visible(names.Text(node)) << '\n';
    for (const NodeKey& other : report.missing) {
        std::cout << "    " << Visible(names.Text(other))
                  << (missing == Missing::Keep ? " is missing there"
                      : options.dryRun         ? " would be made of its template"
                                               : " is made of its template")
                  << '\n';
    }
    if (!report.recording.empty()) {
        std::cout << "    it plays " << report.recording << '\n';
    }
    return options.exitCode ? 1 : 0;
}

} // namespace

Subcommand CopyCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add(name, "Make another node of one of any type, with its rows, in one step or not at all");
    AddNodeOfAnyType(command, options->node);
    AddNumber(command, "NEW_NUMBER", options->number, "Number of the new node").Required();
    command
        .Words(
            "--to", [options](const std::string& text) { options->to.push_back(ReadNumber("--to", text)); },
            "The new node's partition, where it is another")
        .Takes(2, 2)
        .ShownAs("CONFIG PARTITION");
    const Option label =
        command.Text("--label", options->label, "The new node's label, where it is another").ShownAs("TEXT");
    command
        .Text("--missing", options->missing,
              "What is done about nodes that the other partition lacks: keep the references, or create them "
              "from their templates")
        .ShownAs("HOW")
        .OneOf({"keep", "create"});
    AddNote(command, options->note);
    AddExitCode(command, options->exitCode,
                command.Flag("--dry-run", options->dryRun, "Only tell what would be made"));
    return {command, ByStatus(options->exitCode, [options, label](const StoreChoice& store) {
                options->labelled = label.Given();
                const auto run = [options](DataBase& dataBase) { return Run(*options, dataBase); };
                return (options->dryRun ? Reading(run) : Opening(run))(store);
            })};
}

} // namespace KAL_AUTO_Node
