#include "auto-node/Arguments.h"
#include "auto-node/CallDiff.h"
#include "auto-node/Changes.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "history/History.h"
#include "nodes/NodeTypes.h"
#include "nodes/References.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

// What will refer to a node that goes.
void TellUses(DataBase& dataBase, const NodePlace& place) {
    const TypeNames names(dataBase);
    for (const StoredReference& use : ReadUses(dataBase, place.partition, names, place.Key())) {
        if (use.holder != place.Key()) {
            std::cout << Visible(use.holder.Text(names.Name(use.holder.typeID))) << ", "
                      << PlaceText(use.Column(), use.row) << " refers to it\n";
        }
    }
}

} // namespace

Subcommand RestoreCommand(CommandLine& program, const std::string& name) {
    struct Options {
        NodePlace place;
        int version = 0; // the latest
        bool dryRun = false;
        std::string note;
        CallOptions calls;
    };

    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(name, "Put an AUTO node back as it was before a change");
    AddNode(command, options->place);
    command
        .Word(
            "VERSION",
            [options](const std::string& text) { options->version = ReadVersion("VERSION", text); },
            "Number of the change; the latest where none is given")
        .ShownAs("");
    AddNote(command, options->note);
    const Option dryRun = command.Flag("--dry-run", options->dryRun, "Only tell what would change");
    AddCalls(command, options->calls, dryRun);
    const auto run = [options](DataBase& dataBase) {
        const NodePlace& place = options->place;
        History history(dataBase, options->note);
        std::int64_t version = options->version;
        if (version == 0) {
            const auto newest = history.Newest(place);
            if (!newest) {
                throw RuntimeError(ErrorNumber::InvalidProcedureCall, "No changes of this node are kept");
            }
            version = newest->number;
        }
        if (!options->calls.json && !history.Before(place, version).node) {
            TellUses(dataBase, place);
        }
        const auto [before, after] = Lasting("Putting the node back", [&] {
            NodeContent earlier = history.ToPutBack(place, version);
            return std::pair(options->dryRun ? ReadContent(dataBase, place)
                                             : history.PutBack(place, version, "restore"),
                             std::move(earlier));
        });
        if (options->calls.json) {
            return options->calls.Status(PrintCalls(dataBase, {{place, before.node, after.node}}, true));
        }
        if (after.node) {
            std::cout << (options->dryRun ? "Would put back" : "Put back") << " AUTO node " << place.number
                      << " as it was before version " << version << ":\n";
        } else {
            std::cout << (options->dryRun ? "Would remove" : "Removed") << " AUTO node " << place.number
                      << ", which was not there before version " << version << ":\n";
        }
        PrintChanges(ChangesInWords(before.node, after.node));
        if (options->calls.calls) {
            std::cout << '\n';
            return options->calls.Status(PrintCalls(dataBase, {{place, before.node, after.node}}, false));
        }
        return options->calls.Status(before != after);
    };
    return {command, ByStatus(options->calls.exitCode, [options, run](const StoreChoice& store) {
                return (options->dryRun ? Reading(run) : Opening(run))(store);
            })};
}

} // namespace KAL_AUTO_Node
