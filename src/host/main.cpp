#include "host/Commands.h"

#include <iostream>

namespace {

constexpr int Failed = 1;
constexpr int UsageError = 2;

} // namespace

int main(int argc, char** argv) {
    using namespace KAL_AUTO_Node;
    CLI::App program("Edits the AUTO nodes of a telephone call-flow store.", "auto-node");
    program.require_subcommand(1);
    program.set_version_flag("--version", KAL_AUTO_NODE_VERSION);
    const auto commands = {
        EditCommand(program),    InitCommand(program),   ListCommand(program),    ShowCommand(program),
        HistoryCommand(program), DiffCommand(program),   RestoreCommand(program), PruneCommand(program),
        ImportCommand(program),  ExportCommand(program), DigitsCommand(program),  GraphCommand(program),
        CheckCommand(program),   UsesCommand(program),   RepointCommand(program),
    };
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : UsageError;
    }
    try {
        for (const Subcommand& command : commands) {
            if (command.options->parsed()) {
                return command.run();
            }
        }
    } catch (const std::exception& error) {
        std::cerr << "auto-node: " << error.what() << '\n';
    }
    return Failed;
}
