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

[[nodiscard]] Subcommand EditCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand ApplyCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand CheckCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand CopyCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand DiffCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand DigitsCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand ExpectCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand ExportCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand FindCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand GraphCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand HistoryCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand ImportCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand InitCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand ListCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand MergeCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand MoveCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand PathsCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand PruneCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand RecordingsCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand RemoveCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand RepointCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand ReportCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand RestoreCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand ShowCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand TraceCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand UpgradeCommand(CommandLine& program, const std::string& name);
[[nodiscard]] Subcommand UsesCommand(CommandLine& program, const std::string& name);

struct NamedCommand {
    const char* name;
    Subcommand (*make)(CommandLine& program, const std::string& name);
};

// All of them, in the order of --help.
inline constexpr std::array AllCommands = {
    NamedCommand{"edit", &EditCommand},       NamedCommand{"init", &InitCommand},
    NamedCommand{"list", &ListCommand},       NamedCommand{"show", &ShowCommand},
    NamedCommand{"history", &HistoryCommand}, NamedCommand{"diff", &DiffCommand},
    NamedCommand{"restore", &RestoreCommand}, NamedCommand{"prune", &PruneCommand},
    NamedCommand{"import", &ImportCommand},   NamedCommand{"export", &ExportCommand},
    NamedCommand{"digits", &DigitsCommand},   NamedCommand{"trace", &TraceCommand},
    NamedCommand{"paths", &PathsCommand},     NamedCommand{"expect", &ExpectCommand},
    NamedCommand{"graph", &GraphCommand},     NamedCommand{"check", &CheckCommand},
    NamedCommand{"uses", &UsesCommand},       NamedCommand{"repoint", &RepointCommand},
    NamedCommand{"upgrade", &UpgradeCommand}, NamedCommand{"merge", &MergeCommand},
    NamedCommand{"copy", &CopyCommand},       NamedCommand{"move", &MoveCommand},
    NamedCommand{"remove", &RemoveCommand},   NamedCommand{"find", &FindCommand},
    NamedCommand{"apply", &ApplyCommand},     NamedCommand{"recordings", &RecordingsCommand},
    NamedCommand{"report", &ReportCommand},
};

} // namespace KAL_AUTO_Node
