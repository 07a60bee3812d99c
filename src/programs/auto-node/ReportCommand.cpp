#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "exchange/FileKind.h"
#include "exchange/StoreOfText.h"
#include "platform/Interruption.h"
#include "platform/NewFile.h"
#include "platform/TellError.h"
#include "platform/VisibleText.h"
#include "report/Report.h"
#include "store/DataBase.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

constexpr std::array<std::string_view, 2> Endings = {".html", ".htm"};

struct Options {
    Partition partition;
    std::string file;
    std::string since; // as times are stored
    std::string against;
};

std::string CheckFile(const std::string& file) {
    const std::string ending = std::filesystem::path(file).extension().string();
    return Output::IsStream(file) || std::ranges::find(Endings, ending) != Endings.end()
               ? std::string()
               : "'" + file + "' does not end in .html";
}

// What the partition was in another store, or in what was exported of one.
ReportChanges Compare(const Options& options, DataBase& dataBase, const ReportData& data) {
    const std::string place = "file '" + options.against + "'";
    if (KindOf(options.against) != FileKind::Exchange) {
        DataBase other{std::filesystem::path(options.against)};
        const Snapshot snapshot(other);
        return ChangesAgainst(other, options.partition, data, other.Place());
    }
    StoreOfText text(options.against, &dataBase);
    if (const auto scope = text.Scope(); scope && *scope != options.partition) {
        throw RuntimeError(place + " holds " + scope->Text() + ", not " + options.partition.Text());
    }
    return ChangesAgainst(text.Store(), options.partition, data, place);
}

std::optional<ReportChanges> Changes(const Options& options, DataBase& dataBase, const ReportData& data) {
    if (!options.since.empty()) {
        return ChangesSince(dataBase, options.partition, data, options.since);
    }
    return options.against.empty() ? std::nullopt : std::optional(Compare(options, dataBase, data));
}

// What is written once the store is let go.
struct Read {
    ReportData data;
    std::optional<ReportChanges> changes;
    ReportHead head;
};

Read ReadAll(const Options& options, DataBase& dataBase) {
    Read read;
    read.data = Lasting("Reading the partition", [&] { return ReadReportData(dataBase, options.partition); });
    if (read.data.flow.nodes.empty() && read.data.flow.registered.empty()) {
        FailWithoutNodes(options.partition);
    }
    read.changes = Lasting("Comparing", [&] { return Changes(options, dataBase, read.data); });
    read.head = {dataBase.Place(), LocalTime(TimeStamp())};
    return read;
}

int Write(const Options& options, const Read& read) {
    const Interruption interruption;
    ReportOutcome outcome;
    {
        Progress progress("Writing the report");
        Output output(options.file);
        outcome = WriteReport(
            read.data, read.head, read.changes ? &*read.changes : nullptr,
            [&](std::string_view part) { output.Append(part); },
            [&](const std::function<std::string()>& text) { progress.Show(text); });
        output.Finish();
    }
    for (const std::string& warning : outcome.warnings) {
        TellError(warning);
    }
    // A pipe may be the standard output's, where this would stand behind the page.
    if (!Output::IsStream(options.file)) {
        std::cout << "Wrote " << Counted(outcome.menus, "menu") << " and "
                  << Counted(outcome.findings, "finding") << " into " << Visible(options.file) << '\n';
    }
    return 0;
}

} // namespace

Subcommand ReportCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name, "Write a partition as one page to read, to search, to print and to send, for a browser");
    AddPartition(command, options->partition);
    command.Text("FILE", options->file, "The page, ending in .html").Required().Check(CheckFile).ShownAs("");
    const Option since = command
                             .Word("--since", ReadTime("--since", options->since, 0),
                                   "With what changed from that day or time on, as the history tells it")
                             .ShownAs("TIME");
    command
        .Text("--against", options->against,
              "With what differs from another store, or from what export wrote")
        .ShownAs("FILE")
        .Excludes(since);
    return {command, [options](const StoreChoice& store) {
                std::optional<Read> read;
                Reading([&](DataBase& dataBase) {
                    read = ReadAll(*options, dataBase);
                    return 0;
                })(store);
                return Write(*options, *read);
            }};
}

} // namespace KAL_AUTO_Node
