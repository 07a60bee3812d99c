#include "auto-node/Commands.h"
#include "platform/VisibleText.h"
#include "store/CreateServerStore.h"
#include "store/ServerLink.h"

#include <iostream>
#include <memory>
#include <string>

namespace KAL_AUTO_Node {

Subcommand InitCommand(CommandLine& program, const std::string& name) {
    const CommandArguments init = program.Add(name, "Create a store where the editor looks for it");
    auto demo = std::make_shared<bool>(false);
    init.Flag("--demo", *demo, "Fill it with reference data and nodes worth looking at");
    auto server = std::make_shared<std::string>();
    init.Text("--server", *server,
              "Keep it in this database of a PostgreSQL server, and put a link to it where the editor looks")
        .ShownAs("URI")
        .Check([](const std::string& uri) {
            return IsLink(uri) ? std::string() : "a connection URI begins with postgresql:// or postgres://";
        });
    return {init, [demo, server](const StoreChoice& store) {
                const auto file = store.NewPlace();
                const auto content = *demo ? StoreContent::Demo : StoreContent::Empty;
                if (server->empty()) {
                    CreateStore(file, content);
                    std::cout << "Created " << Visible(file.string()) << '\n';
                } else {
                    const bool made = CreateServerStore(file, *server, content) == ServerStore::Made;
                    std::cout << (made ? "Created the store and the link "
                                       : "Found a store; created the link ")
                              << Visible(file.string()) << '\n';
                }
                if (*demo) {
                    std::cout << "Look at its first node: auto-node edit 1 2 1\n";
                }
                return 0;
            }};
}

} // namespace KAL_AUTO_Node
