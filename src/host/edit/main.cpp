// Shows the editor on one node: auto-node-edit CONFIG PARTITION NODE. Started by auto-node, which has checked
// the numbers.

#include "KAL_AUTO_Node/Business_Rules.h"
#include "store/DataBase.h"

#include <array>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "auto-node-edit: is started by auto-node edit\n";
        return 2;
    }
    try {
        std::array<std::int16_t, 3> numbers{};
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            numbers[i] = static_cast<std::int16_t>(std::stoi(argv[i + 1]));
        }
        const auto [config, partition, node] = numbers;
        KAL_AUTO_Node::Business_Rules rules;
        rules.ShowNodeEditor(config, partition, node);
        if (!rules.Opened()) {
            std::cerr << "auto-node: AUTO node " << node << " of configuration " << config << ", partition "
                      << partition << " could not be opened as it should from "
                      << KAL_AUTO_Node::DataBase().File().string() << "; see the messages shown\n";
            return 1;
        }
    } catch (const std::exception& error) {
        std::cerr << "auto-node: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
