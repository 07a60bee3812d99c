// The number at the beginning of a text, against a reference that compares digits.

#include "platform/NumericValue.h"

#include "fuzz/Examine.h"

#include <string>

namespace KAL_AUTO_Node {

namespace {

std::int64_t Reference(std::string_view text) {
    while (text.starts_with(' ')) {
        text.remove_prefix(1);
    }
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    std::string digits;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            break;
        }
        if (c != '0' || !digits.empty()) {
            digits += c;
        }
    }
    using Limits = std::numeric_limits<std::int64_t>;
    const std::string most = negative ? "9223372036854775808" : "9223372036854775807";
    if (digits.size() > most.size() || (digits.size() == most.size() && digits >= most)) {
        return negative ? Limits::min() : Limits::max();
    }
    std::int64_t value = 0;
    for (const char c : digits) {
        value = value * 10 + (c - '0');
    }
    return negative ? -value : value;
}

} // namespace

void Examine(std::string_view input) {
    const std::int64_t value = NumericValue(input);
    Require(value == Reference(input), "the number is that of the digits");
    Require(NumericValue(std::to_string(value)) == value, "a written number comes back");
}

} // namespace KAL_AUTO_Node
