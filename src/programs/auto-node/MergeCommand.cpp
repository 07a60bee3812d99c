#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "exchange/Merge.h"
#include "platform/Interruption.h"
#include "platform/NewFile.h"
#include "platform/VisibleText.h"

#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

struct Options {
    std::string base;
    std::string ours;
    std::string theirs;
    std::string output;
};

constexpr int Conflicts = 1;
constexpr int NotMerged = 2;

int Run(const Options& options) {
    std::string text;
    const MergeReport report =
        Lasting("Merging", [&] { return MergeExports(options.base, options.ours, options.theirs, text); });
    const Interruption interruption;
    const std::string& place = options.output.empty() ? options.ours : options.output;
    Output file(place);
    file.Append(text);
    file.Finish();
    if (Output::IsStream(place)) {
        return report.conflicts.empty() ? 0 : Conflicts;
    }
    for (const auto& [line, what, before, ours, theirs] : report.conflicts) {
        std::cout << "line " << line << ": " << Visible(what) << ": " << Visible(ours) << " in ours, "
                  << Visible(theirs) << " in theirs, " << Visible(before) << " before\n";
    }
    std::cout << Counted(report.ours, "change") << " of ours, " << report.theirs << " of theirs, "
              << report.both << " of both";
    if (!report.conflicts.empty()) {
        std::cout << "; " << Counted(report.conflicts.size(), "conflict") << " marked in " << Visible(place);
    }
    std::cout << '\n';
    return report.conflicts.empty() ? 0 : Conflicts;
}

} // namespace

Subcommand MergeCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(name,
                                                 "Bring together what two have changed in copies of one "
                                                 "export; exits with 1 where that is for a person to do",
                                                 "");
    command.Text("BASE", options->base, "The export that both began with; may be empty").Required();
    command.Text("OURS", options->ours, "One of the two, in whose place the result comes").Required();
    command.Text("THEIRS", options->theirs, "The other").Required();
    command.Text("-o,--output", options->output, "Where the result comes instead").ShownAs("FILE");
    return {command, [options](const StoreChoice&) { return Run(*options); }, NotMerged};
}

} // namespace KAL_AUTO_Node
