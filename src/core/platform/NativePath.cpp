#include "platform/NativePath.h"

#include <algorithm>
#include <string>
#include <system_error>

namespace KAL_AUTO_Node {

std::filesystem::path NativePath(std::string_view path) {
    // char8_t, so that the text is taken as UTF-8 whatever the system's narrow encoding is.
    std::u8string text(path.begin(), path.end());
    if constexpr (std::filesystem::path::preferred_separator != '\\') {
        std::ranges::replace(text, u8'\\', u8'/');
    }
    return text;
}

bool FolderExists(std::string_view path) {
    std::error_code ignored;
    return std::filesystem::is_directory(NativePath(path), ignored);
}

} // namespace KAL_AUTO_Node
