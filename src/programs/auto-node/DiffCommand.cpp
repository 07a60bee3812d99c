#include "auto-node/Arguments.h"
#include "auto-node/CallDiff.h"
#include "auto-node/Changes.h"
#include "auto-node/Commands.h"
#include "history/History.h"
#include "store/DataBase.h"

#include <memory>
#include <stdexcept>

namespace KAL_AUTO_Node {

namespace {

struct Options {
    NodePlace place;
    std::vector<int> versions;
    std::vector<std::int16_t> other; // node: configuration, partition, number
    std::string otherStore;
    CallOptions calls;
};

template <class Number>
Option AddNumbers(const CommandArguments& command, const std::string& name, std::vector<Number>& numbers,
                  Number (*read)(const std::string& name, const std::string& text),
                  const std::string& description) {
    const auto readOne = [name, &numbers, read](const std::string& text) {
        numbers.push_back(read(name, text));
    };
    return command.Words(name, readOne, description);
}

std::optional<AutoNode> NodeBefore(DataBase& dataBase, const NodePlace& place, std::optional<int> version) {
    return version ? History(dataBase).Before(place, *version).node : ReadContent(dataBase, place).node;
}

int Run(const Options& options, DataBase& dataBase) {
    const NodePlace& place = options.place;
    const NodePlace otherPlace =
        options.other.empty() ? place : NodePlace{{options.other[0], options.other[1]}, options.other[2]};
    const auto version = [&](std::size_t position) {
        return position < options.versions.size() ? std::optional(options.versions[position]) : std::nullopt;
    };
    std::unique_ptr<DataBase> otherStore;
    std::optional<Snapshot> snapshot;
    if (!options.otherStore.empty()) {
        otherStore = std::make_unique<DataBase>(std::filesystem::path(options.otherStore));
        snapshot.emplace(*otherStore);
    }
    const auto node = NodeBefore(dataBase, place, version(1));
    const auto other = NodeBefore(otherStore ? *otherStore : dataBase, otherPlace, version(0));
    if (!node && (!options.other.empty() || !other)) {
        FailWithout(place);
    }
    if (!other && !options.other.empty()) {
        FailWithout(otherPlace);
    }
    if (!options.calls.calls) {
        const auto words = ChangesInWords(node, other);
        PrintChanges(words);
        return options.calls.Status(!words.empty());
    }
    return options.calls.Status(otherStore || otherPlace != place
                                    ? PrintCalls(dataBase, place, node, other, options.calls.json)
                                    : PrintCalls(dataBase, {{place, node, other}}, options.calls.json));
}

} // namespace

Subcommand DiffCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name,
        "Tell what turns an AUTO node into another: an older state of it, another node, another store's",
        "--in");
    AddNode(command, options->place);
    const Option versions =
        AddNumbers(command, "--versions", options->versions, &ReadVersion,
                   "Into what it was before change OLD, from what it is, or was before change NEW")
            .Takes(1, 2)
            .ShownAs("OLD [NEW]");
    AddNumbers(command, "--node", options->other, &ReadNumber,
               "Another node, by configuration, partition and number")
        .Takes(3, 3)
        .ShownAs("CONFIG PARTITION NODE")
        .Excludes(versions);
    command.Text("--store", options->otherStore, "The file of another store, in which the other node is")
        .ShownAs("FILE")
        .Excludes(versions);
    AddCalls(command, options->calls);
    command.Together([options] {
        if (options->versions.empty() && options->other.empty() && options->otherStore.empty()) {
            Refuse("diff", "takes --versions, --node or --store");
        }
    });
    return {command, ByStatus(options->calls.exitCode,
                              Reading([options](DataBase& dataBase) { return Run(*options, dataBase); }))};
}

} // namespace KAL_AUTO_Node
