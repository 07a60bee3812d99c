#pragma once

#include <charconv>
#include <optional>
#include <string_view>

namespace KAL_AUTO_Node {

// The whole number that a text is, in decimal and nothing else: no blanks, no plus sign, none beyond its
// type.
template <class Whole>
[[nodiscard]] std::optional<Whole> WholeNumber(std::string_view text) {
    Whole number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    return failure == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace KAL_AUTO_Node
