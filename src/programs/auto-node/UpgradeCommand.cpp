#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"
#include "store/UpgradeStore.h"

#include <iostream>

namespace KAL_AUTO_Node {

Subcommand UpgradeCommand(CommandLine& program, const std::string& name) {
    const CommandArguments command =
        program.Add(name, "Bring a store that an older program made to the version that this one makes");
    return {command, Opening([](DataBase& dataBase) {
                const auto upgraded =
                    Lasting("Bringing the store up", [&] { return UpgradeStore(dataBase); });
                const std::string place = Visible(dataBase.Place());
                if (upgraded.to == 0) {
                    std::cout << "The store (" << place
                              << ") tells no version: another program made it. It stays as it is.\n";
                } else if (upgraded.from == upgraded.to) {
                    std::cout << "The store (" << place << ") is of version " << upgraded.to << " already.\n";
                } else {
                    std::cout << "Brought the store (" << place << ") from version " << upgraded.from
                              << " to version " << upgraded.to << '\n';
                }
                if (upgraded.copy) {
                    std::cout << "As it was it lies in " << Visible(upgraded.copy->string()) << '\n';
                }
                return 0;
            })};
}

} // namespace KAL_AUTO_Node
