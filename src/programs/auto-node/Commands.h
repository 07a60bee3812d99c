#pragma once

#include "auto-node/CommandLine.h"
#include "auto-node/StoreChoice.h"

#include <array>
#include <functional>

namespace KAL_AUTO_Node {

// A command of the program: what the command line says of it, and what it does then. It returns the program's
// exit status, and throws what goes wrong; then it is failed, which nothing else returns.
struct Subcommand {
    CommandArguments arguments;
    std::function<int(const StoreChoice& store)> run;
    int failed = 1;
};

// Work on one store, as a command's run. Reading is done in one state of the store, and keeps nobody from
// writing.
using StoreWork = std::function<int(DataBase& dataBase)>;
[[nodiscard]] std::function<int(const StoreChoice& store)> Reading(StoreWork work);
[[nodiscard]] std::function<int(const StoreChoice& store)> Opening(StoreWork work);

[[nodiscard]] Subcommand EditCommand(CommandLine& program);
[[nodiscard]] Subcommand ApplyCommand(CommandLine& program);
[[nodiscard]] Subcommand CheckCommand(CommandLine& program);
[[nodiscard]] Subcommand CopyCommand(CommandLine& program);
[[nodiscard]] Subcommand DiffCommand(CommandLine& program);
[[nodiscard]] Subcommand DigitsCommand(CommandLine& program);
[[nodiscard]] Subcommand ExpectCommand(CommandLine& program);
[[nodiscard]] Subcommand ExportCommand(CommandLine& program);
[[nodiscard]] Subcommand FindCommand(CommandLine& program);
[[nodiscard]] Subcommand GraphCommand(CommandLine& program);
[[nodiscard]] Subcommand HistoryCommand(CommandLine& program);
[[nodiscard]] Subcommand ImportCommand(CommandLine& program);
[[nodiscard]] Subcommand InitCommand(CommandLine& program);
[[nodiscard]] Subcommand ListCommand(CommandLine& program);
[[nodiscard]] Subcommand MergeCommand(CommandLine& program);
[[nodiscard]] Subcommand MoveCommand(CommandLine& program);
[[nodiscard]] Subcommand PathsCommand(CommandLine& program);
[[nodiscard]] Subcommand PruneCommand(CommandLine& program);
[[nodiscard]] Subcommand RecordingsCommand(CommandLine& program);
[[nodiscard]] Subcommand RemoveCommand(CommandLine& program);
[[nodiscard]] Subcommand RepointCommand(CommandLine& program);
[[nodiscard]] Subcommand RestoreCommand(CommandLine& program);
[[nodiscard]] Subcommand ShowCommand(CommandLine& program);
[[nodiscard]] Subcommand TraceCommand(CommandLine& program);
[[nodiscard]] Subcommand UpgradeCommand(CommandLine& program);
[[nodiscard]] Subcommand UsesCommand(CommandLine& program);

// All of them, in the order of --help.
inline constexpr std::array AllCommands = {
    &EditCommand,    &InitCommand,      &ListCommand,   &ShowCommand,   &HistoryCommand, &DiffCommand,
    &RestoreCommand, &PruneCommand,     &ImportCommand, &ExportCommand, &DigitsCommand,  &TraceCommand,
    &PathsCommand,   &ExpectCommand,    &GraphCommand,  &CheckCommand,  &UsesCommand,    &RepointCommand,
    &UpgradeCommand, &MergeCommand,     &CopyCommand,   &MoveCommand,   &RemoveCommand,  &FindCommand,
    &ApplyCommand,   &RecordingsCommand};

} // namespace KAL_AUTO_Node
