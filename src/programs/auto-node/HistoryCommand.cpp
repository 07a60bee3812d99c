#include "auto-node/Arguments.h"
#include "auto-node/Changes.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "history/Changes.h"
#include "history/History.h"
#include "nodes/NodeJson.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <functional>
#include <iostream>
#include <memory>
#include <optional>

namespace KAL_AUTO_Node {

namespace {

void Print(const std::vector<Change>& changes, bool anyAreKept) {
    for (const auto& [version, words] : changes) {
        std::cout << version.number << "  " << Visible(LocalTime(version.begunAt)) << "  "
                  << Visible(AuthorText(version)) << "  " << Visible(OutcomeOf(version)) << '\n';
        PrintChanges(words);
    }
    if (changes.empty()) {
        std::cout << (anyAreKept ? "No such changes are kept.\n" : "No changes of this node are kept.\n");
    } else if (IsUnfinished(changes.front().version) && !IsBeingMade(changes.front().version)) {
        std::cout
            << "The latest save did not finish. auto-node restore puts the node back as it was before.\n";
    }
}

nlohmann::ordered_json ToJson(const Version& version) {
    return {{"version", version.number},
            {"at", version.begunAt},
            {"user", version.author.user},
            {"host", version.author.host},
            {"program", version.author.program},
            {"work", version.work},
            {"state", version.state},
            {"note", version.note}};
}

void PrintJson(const std::vector<Change>& changes) {
    auto document = nlohmann::ordered_json::array();
    for (const auto& [version, words] : changes) {
        auto change = ToJson(version);
        change["changes"] = words;
        document.push_back(std::move(change));
    }
    std::cout << JsonText(document) << '\n';
}

struct Options {
    NodePlace place;
    bool oneNode = false;
    LogScope scope;
    std::string user;
    bool json = false;
    bool verify = false;

    [[nodiscard]] bool Takes(const Version& version) const {
        // On a server a name may have the role's behind it.
        return (scope.since.empty() || version.begunAt >= scope.since) &&
               (scope.until.empty() || version.begunAt < scope.until) &&
               (user.empty() || version.author.user == user ||
                version.author.user.starts_with(user + " as ") ||
                version.author.user.ends_with(" as " + user));
    }
};

// The changes of many nodes, without what they changed.
int PrintLog(const Options& options, History& history) {
    using enum Table::Align;
    auto document = nlohmann::ordered_json::array();
    Table table({Left, Right, Right, Left, Left, Left});
    bool any = false;
    history.ReadLog(options.scope, [&](const NodePlace& place, const Version& version) {
        if (!options.Takes(version)) {
            return;
        }
        any = true;
        if (options.json) {
            nlohmann::ordered_json change{{"config", place.partition.config},
                                          {"partition", place.partition.number},
                                          {"number", place.number}};
            change.update(ToJson(version));
            document.push_back(std::move(change));
        } else {
            table.Add({LocalTime(version.begunAt), std::to_string(place.partition.config),
                       std::to_string(place.partition.number), "AUTO " + std::to_string(place.number),
                       AuthorText(version), OutcomeOf(version)});
        }
    });
    if (options.json) {
        std::cout << JsonText(document) << '\n';
    } else if (any) {
        table.Print(std::cout);
    } else {
        std::cout << "No such changes are kept.\n";
    }
    return 0;
}

int Run(const Options& options, DataBase& dataBase) {
    History history(dataBase);
    if (options.verify) {
        const std::size_t states = Lasting("Verifying what is kept", [&] { return history.Verify(); });
        std::cout << Counted(states, "kept state") << " can be put back\n";
        return 0;
    }
    if (!options.oneNode) {
        return PrintLog(options, history);
    }
    auto changes =
        Lasting("Reading the changes", [&] { return ReadChanges(dataBase, history, options.place); });
    if (changes.empty()) {
        static_cast<void>(RequireAutoNode(dataBase, options.place));
    }
    const bool anyAreKept = !changes.empty();
    std::erase_if(changes, [&](const Change& change) { return !options.Takes(change.version); });
    options.json ? PrintJson(changes) : Print(changes, anyAreKept);
    return 0;
}

} // namespace

Subcommand HistoryCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name, "List the changes of an AUTO node, or of all in a partition or the store, newest first");
    NodePlace& place = options->place;
    const Option partition = AddAnyPartition(command, place.partition);
    const Option node = AddNumber(command, "NODE", place.number, "Number of the AUTO node");
    command
        .Word("--since", ReadTime("--since", options->scope.since, 0), "Only those from that day or time on")
        .ShownAs("TIME");
    command
        .Word("--until", ReadTime("--until", options->scope.until, 1),
              "Only those up to that time, or to the end of that day")
        .ShownAs("TIME");
    command.Text("--user", options->user, "Only those of that user").ShownAs("NAME");
    const Option json = command.Flag("--json", options->json, "Print JSON, for programs");
    command.Flag("--verify", options->verify, "Only tell whether all that is kept can be put back")
        .Excludes(json)
        .Excludes(partition);
    return {command, Reading([options, partition, node](DataBase& dataBase) {
                options->oneNode = node.Given();
                if (partition.Given()) {
                    options->scope.partition = options->place.partition;
                }
                return Run(*options, dataBase);
            })};
}

Subcommand PruneCommand(CommandLine& program, const std::string& name) {
    const CommandArguments command = program.Add(
        name, "Drop what the history keeps no longer: all but the last " +
                  std::to_string(History::KeptVersions) + " changes of each node and those younger than " +
                  std::to_string(History::KeptDays) + " days, up to a limit; and give the space back");
    return {
        command, Opening([](DataBase& dataBase) {
            const auto dropped = Lasting("Dropping old versions",
                                         [&] { return static_cast<std::size_t>(History(dataBase).Prune()); });
            std::cout << "Dropped " << Counted(dropped, "version") << '\n';
            try {
                if (const auto bytes = Lasting("Giving space back", [&] { return dataBase.Compact(); })) {
                    std::cout << "Gave back " << (*bytes + 1023) / 1024 << " KiB of the file\n";
                } else {
                    std::cout << "The server uses the space again\n";
                }
            } catch (const RuntimeError& error) {
                if (error.Number() != ErrorNumber::StoreLocked) {
                    throw;
                }
                std::cout << "Its space is used again; it cannot be given back while somebody else works in "
                             "the store\n";
            }
            return 0;
        })};
}

} // namespace KAL_AUTO_Node
