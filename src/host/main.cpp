#include "KAL_AUTO_Node/Business_Rules.h"
#include "platform/NativePath.h"
#include "store/CreateStore.h"
#include "store/DataBase.h"
#include "store/ParlonPlusFilesAndFolders.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

constexpr int Failed = 1;
constexpr int UsageError = 2;

// The toolkit ends the process where it finds no display; asking first gives a plain answer.
bool HasDisplay() {
    const auto isSet = [](const char* variable) {
        const char* value = std::getenv(variable);
        return value != nullptr && *value != '\0';
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

// An argument that is a 16-bit number in decimal; by itself the parser takes octal and empty texts too.
void AddNumber(CLI::App& command, const std::string& name, std::int16_t& number, const std::string& meaning) {
    const auto read = [name, &number](const std::string& text) {
        const char* const end = text.data() + text.size();
        const auto [stop, failure] = std::from_chars(text.data(), end, number);
        if (failure != std::errc() || stop != end) {
            throw CLI::ValidationError(name, "'" + text + "' is no whole number from -32768 to 32767");
        }
    };
    command.add_option_function<std::string>(name, read, meaning)->required()->type_name("");
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Edits the AUTO nodes of a telephone call-flow store.", "auto-node");
    app.require_subcommand(1);
    app.set_version_flag("--version", KAL_AUTO_NODE_VERSION);

    std::int16_t config = 0;
    std::int16_t partition = 0;
    std::int16_t node = 0;
    CLI::App* edit = app.add_subcommand("edit", "Open the editor on a node");
    AddNumber(*edit, "CONFIG", config, "Configuration number");
    AddNumber(*edit, "PARTITION", partition, "Partition number");
    AddNumber(*edit, "NODE", node, "Number of the AUTO node; 0 for the partition's template");

    bool demo = false;
    CLI::App* init = app.add_subcommand("init", "Create a store where the editor looks for it");
    init->add_flag("--demo", demo, "Fill it with reference data and nodes worth looking at");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : UsageError;
    }

    try {
        if (init->parsed()) {
            const auto file = KAL_AUTO_Node::NativePath(KAL_AUTO_Node::GetNewDatabaseFile());
            KAL_AUTO_Node::CreateStore(file, demo ? KAL_AUTO_Node::StoreContent::Demo
                                                  : KAL_AUTO_Node::StoreContent::Empty);
            std::cout << "Created " << file.string() << '\n';
            if (demo) {
                std::cout << "Look at its first node: " << argv[0] << " edit 1 2 1\n";
            }
        } else if (!HasDisplay()) {
            throw std::runtime_error("there is no display to show the editor on (DISPLAY is not set)");
        } else {
            KAL_AUTO_Node::Business_Rules rules;
            rules.ShowNodeEditor(config, partition, node);
            if (!rules.Opened()) {
                std::cerr << "auto-node: AUTO node " << node << " of configuration " << config
                          << ", partition " << partition << " could not be opened as it should from "
                          << KAL_AUTO_Node::DataBase().File().string() << "; see the messages shown\n";
                return Failed;
            }
        }
    } catch (const std::exception& error) {
        std::cerr << "auto-node: " << error.what() << '\n';
        return Failed;
    }
    return 0;
}
