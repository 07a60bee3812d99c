#include "auto-node/Arguments.h"
#include "auto-node/CallDiff.h"
#include "auto-node/Changes.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "exchange/Plan.h"
#include "history/History.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"

#include <iostream>
#include <memory>
#include <stdexcept>

namespace KAL_AUTO_Node {

Subcommand ApplyCommand(CommandLine& program, const std::string& name) {
    struct Options {
        std::string file;
        std::string note;
        bool dryRun = false;
        bool exitCode = false;
    };

    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name, "Make the changes that import --plan or repoint --plan wrote down, all or none of them");
    command.Text("FILE", options->file, "The plan").Required().ShownAs("");
    AddNote(command, options->note);
    AddExitCode(command, options->exitCode,
                command.Flag("--dry-run", options->dryRun, "Only tell whether all is as it was planned on"));
    return {command,
            ByStatus(options->exitCode, Opening([options](DataBase& dataBase) {
                         RowPlan plan;
                         try {
                             plan = PlanIn(ReadTextFile(options->file));
                         } catch (const RuntimeError& error) {
                             throw RuntimeError(error.Number(), "'" + options->file + "': " + error.what());
                         }
                         History history(dataBase, options->note);
                         const auto changed = Lasting("Applying the plan", [&] {
                             return Apply(dataBase, history, plan,
                                          options->dryRun ? Applying::Tried : Applying::Done);
                         });
                         if (!changed.empty()) {
                             std::string text =
                                 "nothing is changed, for these are no longer as the plan rests on them:";
                             for (const std::string& one : changed) {
                                 text += "\n  " + Visible(one);
                             }
                             throw RuntimeError(text);
                         }
                         for (const auto& [place, content] : plan.nodes) {
                             std::cout << place.Text() << '\n';
                         }
                         PrintCounts(options->dryRun ? "Would apply" : "Applied", plan);
                         const auto [removed, altered, added] = plan.Count();
                         return options->exitCode && removed + altered + added > 0 ? 1 : 0;
                     }))};
}

} // namespace KAL_AUTO_Node
