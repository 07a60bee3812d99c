#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// The characters of a text, read by the definition of UTF-8 alone; nothing where it is none: a byte that
// begins no character, one that is written too long, half a surrogate pair, a code beyond the last.
[[nodiscard]] inline std::optional<std::u32string> CharactersOf(std::string_view text) {
    std::u32string characters;
    for (std::size_t at = 0; at < text.size();) {
        const auto first = static_cast<unsigned char>(text[at++]);
        const int more = first < 0x80 ? 0 : first < 0xC0 ? -1 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
        if (more < 0 || first > 0xF7) {
            return std::nullopt;
        }
        char32_t code = more == 0 ? first : first & (0x3FU >> more);
        for (int i = 0; i < more; ++i) {
            if (at == text.size() || (static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80U) {
                return std::nullopt;
            }
            code = code << 6 | (static_cast<unsigned char>(text[at++]) & 0x3FU);
        }
        constexpr char32_t least[] = {0, 0x80, 0x800, 0x10000};
        if (code < least[more] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
            return std::nullopt;
        }
        characters += code;
    }
    return characters;
}

[[nodiscard]] inline bool IsUtf8(std::string_view text) { return CharactersOf(text).has_value(); }

} // namespace KAL_AUTO_Node
