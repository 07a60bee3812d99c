#include "store/DataBase.h"
#include "store/ReferenceColumns.h"

#include <array>

namespace KAL_AUTO_Node {

namespace {

struct NamedCommand {
    std::string_view name;
    std::string sql;
};

const NamedCommand& CommandOf(Command command) {
    static const std::array<NamedCommand, CommandCount> commands = {{
#define COMMAND(name, sql) {#name, sql},
#include "store/Commands.inc"
#undef COMMAND
    }};
    return commands.at(static_cast<std::size_t>(command));
}

} // namespace

std::string_view CommandName(Command command) { return CommandOf(command).name; }

const std::string& CommandText(Command command) { return CommandOf(command).sql; }

} // namespace KAL_AUTO_Node
