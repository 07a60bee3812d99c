#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "exchange/Export.h"
#include "platform/NewFile.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

namespace {

struct Options {
    std::vector<std::string> arguments; // the file, behind a partition or alone
    std::optional<Partition> scope;
};

} // namespace

Subcommand ExportCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name, "Write a partition, or the whole store, into a file of text that import brings back");
    command
        .Texts("FILE", options->arguments,
               "Configuration and partition number, where it is one, and the file")
        .Required()
        .Takes(1, 3)
        .ShownAs("[CONFIG PARTITION] FILE");
    command.Together([options] {
        auto& arguments = options->arguments;
        if (arguments.size() == 2) {
            Refuse("export", "takes CONFIG PARTITION FILE, or FILE alone");
        }
        if (arguments.size() == 3) {
            options->scope = {ReadNumber("CONFIG", arguments[0]), ReadNumber("PARTITION", arguments[1])};
        }
    });
    return {command, Opening([options](DataBase& dataBase) {
                const std::string& file = options->arguments.back();
                std::uint64_t rows = 0;
                {
                    Progress progress("Reading the store");
                    rows = Export(dataBase, options->scope, file, [&](std::uint64_t written) {
                        progress.Show([&] { return Counted(written, "row") + " written"; });
                    });
                }
                // A pipe may be the standard output's, where this would stand behind what was written.
                if (!Output::IsStream(file)) {
                    std::cout << "Wrote " << Counted(rows, "row") << " into " << Visible(file) << '\n';
                }
                return 0;
            })};
}

} // namespace KAL_AUTO_Node
