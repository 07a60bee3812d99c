#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Programs.h"
#include "platform/RuntimeError.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>
#include <system_error>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

// The toolkit ends the process where it finds no display; asking first gives a plain answer.
bool HasDisplay() {
    const auto isSet = [](const char* variable) {
        const char* value = std::getenv(variable);
        return value != nullptr && *value != '\0';
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

} // namespace

Subcommand EditCommand(CommandLine& program, const std::string& name) {
    auto place = std::make_shared<NodePlace>();
    const CommandArguments edit =
        program.Add(name, "Open the editor on a node, or on the first AUTO node of the store", "");
    const Option config = AddNumber(edit, "CONFIG", place->partition.config, "Configuration number");
    AddNumber(edit, "PARTITION", place->partition.number, "Partition number");
    const Option node =
        AddNumber(edit, "NODE", place->number, "Number of the AUTO node; 0 for the partition's template");
    config.Needs(node);
    return {edit, [place, node](const StoreChoice&) -> int {
                if (!HasDisplay()) {
                    throw RuntimeError("there is no display to show the editor on (DISPLAY is not set)");
                }
                // The window's program takes the place of this one, so that no other command loads the
                // toolkit.
                std::string file = ProgramOfOurs("auto-node-edit").string();
                std::array<std::string, 3> numbers = {std::to_string(place->partition.config),
                                                      std::to_string(place->partition.number),
                                                      std::to_string(place->number)};
                std::array<char*, 5> arguments = {file.data(), numbers[0].data(), numbers[1].data(),
                                                  numbers[2].data(), nullptr};
                if (!node.Given()) {
                    arguments[1] = nullptr;
                }
                execv(file.c_str(), arguments.data());
                throw std::system_error(errno, std::generic_category(), "cannot start the editor, " + file);
            }};
}

} // namespace KAL_AUTO_Node
