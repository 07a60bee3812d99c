#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "exchange/Export.h"
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

Subcommand ExportCommand(CommandLine& program) {
    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        "export", "Write a partition, or the whole store, into a file of text that import brings back");
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
    return {command, [options] {
                DataBase dataBase;
                const std::string& file = options->arguments.back();
                const std::uint64_t rows = Export(dataBase, options->scope, file);
                std::cout << "Wrote " << rows << (rows == 1 ? " row" : " rows") << " into " << file << '\n';
                return 0;
            }};
}

} // namespace KAL_AUTO_Node
