#include "audit/Recordings.h"
#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "nodes/NodeJson.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;

constexpr int SomeMissing = 1;
constexpr int SomeToLookAt = 3;

struct Options {
    Partition partition;
    std::string sounds;
    bool json = false;
};

std::string Listed(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += (all.empty() ? "" : ", ") + text;
    }
    return all;
}

std::string Menus(const std::vector<int>& players, const std::string& type) {
    std::string all;
    for (const int player : players) {
        all += (all.empty() ? type + ' ' : ", ") + std::to_string(player);
    }
    return all.empty() ? "no menu" : all;
}

// What is to be done about it; empty where nothing is.
std::string Remark(const Recording& recording) {
    std::string text;
    switch (recording.sound.value_or(Sound::There)) {
    case Sound::There:
        break;
    case Sound::Missing:
        text = "MISSING";
        break;
    case Sound::OtherCase:
        text = "MISSING, but for " + recording.other;
        break;
    case Sound::NoFile:
        text = "no file of its own: a link or a folder";
        break;
    case Sound::NoName:
        text = "names no file";
        break;
    case Sound::LeadsAway:
        text = "leads out of the folder";
        break;
    }
    if (!recording.shared.empty()) {
        text += (text.empty() ? "also of " : "; also of ") + Listed(recording.shared);
    }
    return text;
}

int StatusOf(const Recordings& recordings) {
    const auto isAmiss = [](const Recording& recording) {
        return recording.sound.value_or(Sound::There) != Sound::There;
    };
    const auto isShared = [](const Recording& recording) { return !recording.shared.empty(); };
    return std::ranges::any_of(recordings.messages, isAmiss)                                   ? SomeMissing
           : std::ranges::any_of(recordings.messages, isShared) || !recordings.unnamed.empty() ? SomeToLookAt
                                                                                               : 0;
}

void PrintJson(const Recordings& recordings) {
    auto messages = nlohmann::ordered_json::array();
    for (const Recording& recording : recordings.messages) {
        nlohmann::ordered_json one{{"number", recording.message},
                                   {"label", recording.label},
                                   {"file", recording.file},
                                   {"players", recording.players},
                                   {"shared", recording.shared}};
        if (recording.sound) {
            one["sound"] = NameOf(*recording.sound);
        }
        if (!recording.other.empty()) {
            one["other"] = recording.other;
        }
        messages.push_back(std::move(one));
    }
    std::cout << JsonText(nlohmann::ordered_json{{"messages", std::move(messages)},
                                                 {"unnamed", recordings.unnamed}})
              << '\n';
}

int Run(const Options& options, DataBase& dataBase) {
    const TypeNames names(dataBase);
    const auto recordings = Lasting("Reading the partition", [&] {
        return ReadRecordings(dataBase, names, options.partition,
                              options.sounds.empty() ? std::nullopt
                                                     : std::optional<std::filesystem::path>(options.sounds));
    });
    const int status = options.sounds.empty() ? 0 : StatusOf(recordings);
    if (options.json) {
        PrintJson(recordings);
        return status;
    }
    if (recordings.messages.empty()) {
        std::cout << "The partition has no messages.\n";
    }
    Table table({Left, Left, Left, Left, Left});
    for (const Recording& recording : recordings.messages) {
        table.Add({NodeKey{MessageType, recording.message}.Text(names.Name(MessageType)), recording.file,
                   recording.label, Menus(recording.players, names.Name(AutoType)), Remark(recording)});
    }
    table.Print(std::cout);
    for (const std::string& file : recordings.unnamed) {
        std::cout << Visible(file) << " is named by no message\n";
    }
    return status;
}

} // namespace

Subcommand RecordingsCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name, "List messages with their files and the menus that play them, and what a folder has of "
              "them; exits with 1 where files are missing, 3 where others need a look");
    AddPartition(command, options->partition);
    command.Text("--sounds", options->sounds, "The folder of the files").ShownAs("FOLDER");
    command.Flag("--json", options->json, "Print JSON, for programs");
    return {command, Reading([options](DataBase& dataBase) { return Run(*options, dataBase); })};
}

} // namespace KAL_AUTO_Node
