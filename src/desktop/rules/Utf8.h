#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// The store speaks UTF-8, the window UTF-16.
[[nodiscard]] inline QString FromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace KAL_AUTO_Node
