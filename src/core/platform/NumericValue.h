#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace KAL_AUTO_Node {

// The whole number at the beginning of a text, leading blanks skipped; 0 where there is none; saturating.
[[nodiscard]] inline std::int64_t NumericValue(std::string_view text) noexcept {
    // As nearly all are, digits alone.
    constexpr std::size_t surelyFits = 18;
    if (!text.empty() && text.size() <= surelyFits) {
        std::int64_t digits = 0;
        const char* at = text.data();
        const char* const end = at + text.size();
        for (; at != end && *at >= '0' && *at <= '9'; ++at) {
            digits = digits * 10 + (*at - '0');
        }
        if (at == end) {
            return digits;
        }
    }
    const auto start = text.find_first_not_of(' ');
    if (start == std::string_view::npos) {
        return 0;
    }
    text.remove_prefix(start);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return 0;
        }
    }
    std::int64_t value = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), value);
    if (parsed.ec == std::errc::result_out_of_range) {
        return text.starts_with('-') ? std::numeric_limits<std::int64_t>::min()
                                     : std::numeric_limits<std::int64_t>::max();
    }
    return value;
}

} // namespace KAL_AUTO_Node
