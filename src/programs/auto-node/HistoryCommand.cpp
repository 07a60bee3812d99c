#include "auto-node/Arguments.h"
#include "auto-node/Changes.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "history/History.h"
#include "nodes/NodeJson.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <iostream>
#include <memory>
#include <optional>

namespace KAL_AUTO_Node {

namespace {

// A change with what it changed: what was there before it against what was there before the next.
struct Change {
    Version version;
    std::vector<std::string> words;
};

// Nothing where the content of the one version cannot be read; the others tell their changes all the same.
std::optional<NodeContent> ReadBefore(History& history, const NodePlace& place, std::int64_t version) {
    try {
        return history.Before(place, version);
    } catch (const RuntimeError& error) {
        if (error.Number() == ErrorNumber::StoreNotRecognized) {
            return std::nullopt;
        }
        throw;
    }
}

std::vector<Change> ReadChanges(DataBase& dataBase, History& history, const NodePlace& place) {
    std::vector<Change> changes;
    std::optional after = ReadContent(dataBase, place);
    for (Version& version : history.Versions(place)) {
        auto before = ReadBefore(history, place, version.number);
        auto words = before && after ? ChangesInWords(before->node, after->node)
                                     : std::vector<std::string>{"what it changed cannot be read"};
        changes.push_back({std::move(version), std::move(words)});
        after = std::move(before);
    }
    return changes;
}

// What became of a change, as people read it.
std::string Outcome(const Version& version) {
    return version.state == VersionState::Finished ? version.work : version.work + ", " + version.state;
}

void Print(const std::vector<Change>& changes) {
    for (const auto& [version, words] : changes) {
        std::cout << version.number << "  " << Visible(LocalTime(version.begunAt)) << "  "
                  << Visible(AuthorText(version)) << "  " << Visible(Outcome(version)) << '\n';
        PrintChanges(words);
    }
    if (changes.empty()) {
        std::cout << "No changes of this node are kept.\n";
    } else if (IsUnfinished(changes.front().version) && !IsBeingMade(changes.front().version)) {
        std::cout
            << "The latest save did not finish. auto-node restore puts the node back as it was before.\n";
    }
}

void PrintJson(const std::vector<Change>& changes) {
    auto document = nlohmann::ordered_json::array();
    for (const auto& [version, words] : changes) {
        document.push_back({{"version", version.number},
                            {"at", version.begunAt},
                            {"user", version.author.user},
                            {"host", version.author.host},
                            {"program", version.author.program},
                            {"work", version.work},
                            {"state", version.state},
                            {"changes", words}});
    }
    std::cout << JsonText(document) << '\n';
}

} // namespace

Subcommand HistoryCommand(CommandLine& program) {
    struct Options {
        NodePlace place;
        bool json = false;
    };

    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add("history", "List the changes of an AUTO node, newest first");
    AddNode(command, options->place);
    command.Flag("--json", options->json, "Print JSON, for programs");
    return {command, Reading([options](DataBase& dataBase) {
                History history(dataBase);
                const auto changes = Lasting("Reading the changes",
                                             [&] { return ReadChanges(dataBase, history, options->place); });
                if (changes.empty()) {
                    static_cast<void>(RequireAutoNode(dataBase, options->place));
                }
                options->json ? PrintJson(changes) : Print(changes);
                return 0;
            })};
}

Subcommand PruneCommand(CommandLine& program) {
    const CommandArguments command = program.Add(
        "prune", "Drop what the history keeps no longer: all but the last " +
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
