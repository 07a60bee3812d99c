#pragma once

#include <filesystem>
#include <string_view>

namespace KAL_AUTO_Node {

// The native path that a path built with backslashes (UTF-8) stands for. Where the backslash is no separator,
// each one becomes the separator.
[[nodiscard]] std::filesystem::path NativePath(std::string_view path);

// Whether a folder of that path (as for NativePath) exists. One that cannot be looked at does not; no error
// is raised.
[[nodiscard]] bool FolderExists(std::string_view path);

} // namespace KAL_AUTO_Node
