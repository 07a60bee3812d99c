#pragma once

#include "auto-node/CommandLine.h"

#include <functional>

namespace KAL_AUTO_Node {

// A command of the program: what the command line says of it, and what it does then. It returns the program's
// exit status, and throws what goes wrong.
struct Subcommand {
    CommandArguments arguments;
    std::function<int()> run;
};

[[nodiscard]] Subcommand EditCommand(CommandLine& program);
[[nodiscard]] Subcommand CheckCommand(CommandLine& program);
[[nodiscard]] Subcommand DiffCommand(CommandLine& program);
[[nodiscard]] Subcommand DigitsCommand(CommandLine& program);
[[nodiscard]] Subcommand ExpectCommand(CommandLine& program);
[[nodiscard]] Subcommand ExportCommand(CommandLine& program);
[[nodiscard]] Subcommand GraphCommand(CommandLine& program);
[[nodiscard]] Subcommand HistoryCommand(CommandLine& program);
[[nodiscard]] Subcommand ImportCommand(CommandLine& program);
[[nodiscard]] Subcommand InitCommand(CommandLine& program);
[[nodiscard]] Subcommand ListCommand(CommandLine& program);
[[nodiscard]] Subcommand PathsCommand(CommandLine& program);
[[nodiscard]] Subcommand PruneCommand(CommandLine& program);
[[nodiscard]] Subcommand RepointCommand(CommandLine& program);
[[nodiscard]] Subcommand RestoreCommand(CommandLine& program);
[[nodiscard]] Subcommand ShowCommand(CommandLine& program);
[[nodiscard]] Subcommand TraceCommand(CommandLine& program);
[[nodiscard]] Subcommand UsesCommand(CommandLine& program);

} // namespace KAL_AUTO_Node
