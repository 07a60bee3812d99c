#include "platform/SpecialFolder.h"

#include <cstdlib>
#include <sstream>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

std::string Environment(const char* variable, const char* whereUnset) {
    const char* value = std::getenv(variable);
    return value == nullptr || *value == '\0' ? whereUnset : value;
}

} // namespace

std::string SpecialFolderPath(std::int32_t identifier) {
    if (identifier != CommonAppDataFolder) {
        return {};
    }
    std::string path = Environment("PROGRAMDATA", "/var/lib");
    path.erase(path.find_last_not_of("/\\") + 1);
    return path;
}

std::vector<std::filesystem::path> ConfigurationFolders() {
    std::vector<std::filesystem::path> folders;
    std::istringstream entries(Environment("XDG_CONFIG_DIRS", "/etc/xdg"));
    for (std::string entry; std::getline(entries, entry, ':');) {
        if (std::filesystem::path folder(entry); folder.is_absolute()) {
            folders.push_back(std::move(folder));
        }
    }
    return folders;
}

} // namespace KAL_AUTO_Node
