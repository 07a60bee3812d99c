#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// A text (UTF-8) as a person may be given it: what would steer a terminal, break the line, or turn the
// direction of what follows, stands there in the form \x1b or \u202e.
[[nodiscard]] std::string Visible(std::string_view text);

// The same line by line: line breaks stay.
[[nodiscard]] std::string VisibleLines(std::string_view text);

// Whether a character would do something else to a person's screen than be seen on it.
[[nodiscard]] bool Steers(char32_t character);

// How many columns of a terminal a visible text takes.
[[nodiscard]] std::size_t DisplayWidth(std::string_view text);

} // namespace KAL_AUTO_Node
