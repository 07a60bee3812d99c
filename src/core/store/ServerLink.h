#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// A text file in a store's place that stands for a database on a server: its first line is a connection URI.

// Bytes; no URI is as long.
inline constexpr std::size_t LongestLink = 4096;

// Whether a text begins as a connection URI does.
[[nodiscard]] bool IsLink(std::string_view text);

// The first line of such a file, of which so much is given as there may be to it. Raises StoreNotRecognized
// where that is not all.
[[nodiscard]] std::string LinkIn(std::string_view head);

} // namespace KAL_AUTO_Node
