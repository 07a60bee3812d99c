#include "auto-node/Commands.h"
#include "platform/TellError.h"

#include <iostream>
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
    for (const auto make : AllCommands) {
        commands.push_back(make(program));
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
