#pragma once

#include <CLI/CLI.hpp>

#include <functional>

namespace KAL_AUTO_Node {

// A command of the program: what the command line says of it, and what it does then. It returns the program's
// exit status, and throws what goes wrong.
struct Subcommand {
    CLI::App* options;
    std::function<int()> run;
};

[[nodiscard]] Subcommand EditCommand(CLI::App& program);
[[nodiscard]] Subcommand CheckCommand(CLI::App& program);
[[nodiscard]] Subcommand DiffCommand(CLI::App& program);
[[nodiscard]] Subcommand DigitsCommand(CLI::App& program);
[[nodiscard]] Subcommand ExportCommand(CLI::App& program);
[[nodiscard]] Subcommand GraphCommand(CLI::App& program);
[[nodiscard]] Subcommand HistoryCommand(CLI::App& program);
[[nodiscard]] Subcommand ImportCommand(CLI::App& program);
[[nodiscard]] Subcommand InitCommand(CLI::App& program);
[[nodiscard]] Subcommand ListCommand(CLI::App& program);
[[nodiscard]] Subcommand PruneCommand(CLI::App& program);
[[nodiscard]] Subcommand RepointCommand(CLI::App& program);
[[nodiscard]] Subcommand RestoreCommand(CLI::App& program);
[[nodiscard]] Subcommand ShowCommand(CLI::App& program);
[[nodiscard]] Subcommand UsesCommand(CLI::App& program);

} // namespace KAL_AUTO_Node
