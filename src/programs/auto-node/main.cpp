#include "auto-node/Commands.h"
#include "platform/TellError.h"

#include <algorithm>
#include <iostream>
#include <string_view>
#include <vector>

namespace {

constexpr int Failed = 1;
constexpr int UsageError = 2;

// A program that reads a cut output must not take it for the whole.
int Ended(int status) {
    if (std::cout.flush()) {
        return status;
    }
    KAL_AUTO_Node::TellError("the output could not be written as a whole");
    return Failed;
}

} // namespace

int main(int argc, char** argv) {
    using namespace KAL_AUTO_Node;
    CommandLine program("Edits the AUTO nodes of a telephone call-flow store.", "auto-node",
                        KAL_AUTO_NODE_VERSION);
    std::vector<Subcommand> commands;
    commands.reserve(AllCommands.size());
    // The options of others cost more than a small command does; help and mistakes need them.
    const auto given =
        std::ranges::find(AllCommands, argc > 1 ? std::string_view(argv[1]) : "",
                          [](const NamedCommand& command) { return std::string_view(command.name); });
    for (const NamedCommand& command : AllCommands) {
        if (given == AllCommands.end() || &command == &*given) {
            commands.push_back(command.make(program, command.name));
        }
    }
    switch (program.Read(argc, argv)) {
    case CommandLine::Outcome::Run:
        break;
    case CommandLine::Outcome::Told:
        return Ended(0);
    case CommandLine::Outcome::Wrong:
        return UsageError;
    }
    const StoreChoice store(program.Store());
    for (const Subcommand& command : commands) {
        if (command.arguments.Given()) {
            try {
                return Ended(command.run(store));
            } catch (const std::exception& error) {
                TellError(store.Told(error));
                return command.failed;
            }
        }
    }
    return Failed;
}
