#include "host/Commands.h"
#include "platform/NativePath.h"
#include "store/CreateStore.h"
#include "store/ParlonPlusFilesAndFolders.h"

#include <iostream>
#include <memory>

namespace KAL_AUTO_Node {

Subcommand InitCommand(CLI::App& program) {
    CLI::App* init = program.add_subcommand("init", "Create a store where the editor looks for it");
    auto demo = std::make_shared<bool>(false);
    init->add_flag("--demo", *demo, "Fill it with reference data and nodes worth looking at");
    return {init, [demo] {
                const auto file = NativePath(GetNewDatabaseFile());
                CreateStore(file, *demo ? StoreContent::Demo : StoreContent::Empty);
                std::cout << "Created " << file.string() << '\n';
                if (*demo) {
                    std::cout << "Look at its first node: auto-node edit 1 2 1\n";
                }
                return 0;
            }};
}

} // namespace KAL_AUTO_Node
