#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// The store speaks UTF-8, the window UTF-16.
[[nodiscard]] inline QString FromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// Labels of nodes that are referred to are there to be read; the toolkit cannot lay out every length.
[[nodiscard]] inline QString ShownLabel(std::string_view label) {
    constexpr qsizetype longest = 1000;
    constexpr std::size_t bytesPerCharacter = 4;
    const QString whole = FromUtf8(label.substr(0, (longest + 1) * bytesPerCharacter));
    return whole.size() > longest ? whole.left(longest) + QChar(0x2026) : whole;
}

} // namespace KAL_AUTO_Node
