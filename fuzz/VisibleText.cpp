// A text that people are given steers nothing, whatever bytes it was made from.

#include "platform/VisibleText.h"

#include "fuzz/Examine.h"
#include "fuzz/Utf8.h"

#include <algorithm>

namespace KAL_AUTO_Node {

void Examine(std::string_view input) {
    const std::string visible = Visible(input);
    const auto characters = CharactersOf(visible);
    Require(characters.has_value(), "a visible text is UTF-8");
    constexpr std::u32string_view steering =
        U"\u061C\u200E\u200F\u2028\u2029\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069";
    Require(std::ranges::none_of(*characters,
                                 [&](char32_t code) {
                                     return code < 0x20 || (code >= 0x7F && code < 0xA0) ||
                                            steering.find(code) != std::u32string_view::npos;
                                 }),
            "a visible text steers nothing");
    Require(Visible(visible) == visible, "what is visible stays as it is");
    Require(DisplayWidth(visible) <= 2 * characters->size(), "no character is wider than two columns");
    const bool plain = std::ranges::all_of(*characters, [](char32_t code) { return code < 0x7F; });
    Require(!plain || DisplayWidth(visible) == visible.size(), "ASCII takes a column each");
    const std::string beside = Visible("a" + visible + "b");
    Require(DisplayWidth(beside) == DisplayWidth(visible) + 2, "widths add up");
}

} // namespace KAL_AUTO_Node
