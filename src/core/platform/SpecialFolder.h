#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// Identifier of the machine-wide application-data folder.
inline constexpr std::int32_t CommonAppDataFolder = 35;

// The path of a special folder in UTF-8, without a trailing separator (so the root folder is empty); empty
// for an identifier that names none. The machine-wide application-data folder is $PROGRAMDATA where that is
// set and not empty, else /var/lib. The folder need not exist.
[[nodiscard]] std::string SpecialFolderPath(std::int32_t identifier);

// The folders of the machine's configuration, the one that takes precedence first: $XDG_CONFIG_DIRS
// (separated by colons) where that is set and not empty, else /etc/xdg. Entries that are not absolute are
// invalid and left out.
[[nodiscard]] std::vector<std::filesystem::path> ConfigurationFolders();

} // namespace KAL_AUTO_Node
