#pragma once

#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// The form of a text (UTF-8) in which texts that differ in case alone are equal, in every language. A text
// that is no UTF-8 is folded as far as its ASCII letters go.
[[nodiscard]] std::string FoldCase(std::string_view text);

// The form in which texts that differ in the case of ASCII letters alone are equal.
[[nodiscard]] std::string FoldAscii(std::string_view text);
// Whether two texts are the same then.
[[nodiscard]] bool SameInAscii(std::string_view a, std::string_view b);

} // namespace KAL_AUTO_Node
