#pragma once

#include <cstdint>
#include <string_view>

namespace KAL_AUTO_Node {

// What a typed text (UTF-16) becomes where the numbers from first to last, none of them negative, are
// offered: its leading digits, as long as the number that they make stays within the two; first where that
// leaves nothing. A 0 that isn't offered leaves nothing.
[[nodiscard]] constexpr int TypedNumber(std::u16string_view text, int first, int last) noexcept {
    int value = 0;
    for (const char16_t character : text) {
        if (character < u'0' || character > u'9') {
            break;
        }
        const std::int64_t next = value * std::int64_t{10} + (character - u'0');
        if (next < first || next > last) {
            break;
        }
        value = static_cast<int>(next);
    }
    return value == 0 ? first : value;
}

} // namespace KAL_AUTO_Node
