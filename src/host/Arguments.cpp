#include "host/Arguments.h"

namespace KAL_AUTO_Node {

CLI::Option* AddNumber(CLI::App& command, const char* name, std::int16_t& number, const char* description) {
    return command.add_option(name, number, description);
}

void AddNode(CLI::App& command, NodeArguments& place) {
    AddNumber(command, "CONFIG", place.config, "Configuration number")->required();
    AddNumber(command, "PARTITION", place.partition, "Partition number")->required();
    AddNumber(command, "NODE", place.node, "Number of the AUTO node; 0 for the partition's template")
        ->required();
}

} // namespace KAL_AUTO_Node
