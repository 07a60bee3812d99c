// The number that a typed text becomes, against a reference that compares written numbers. An input is a text
// in UTF-16, after it the range.

#include "platform/TypedNumber.h"

#include "fuzz/Examine.h"

#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <limits>
#include <string>

namespace KAL_AUTO_Node {

namespace {

// Of digits.
bool AtMost(const std::string& a, const std::string& b) {
    return a.size() < b.size() || (a.size() == b.size() && a <= b);
}

int Reference(std::u16string_view text, int first, int last) {
    std::string number = "0";
    for (const char16_t unit : text) {
        const auto digit = std::u16string_view(u"0123456789").find(unit);
        if (digit == std::u16string_view::npos) {
            break;
        }
        const std::string next = (number == "0" ? "" : number) + std::to_string(digit);
        if (!AtMost(std::to_string(first), next) || !AtMost(next, std::to_string(last))) {
            break;
        }
        number = next;
    }
    return number == "0" ? first : std::stoi(number);
}

} // namespace

void Examine(std::string_view input) {
    FuzzedDataProvider bytes(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    const int most = bytes.ConsumeBool() ? std::numeric_limits<int>::max() : 200;
    const int first = bytes.ConsumeIntegralInRange(0, most);
    const int last = bytes.ConsumeIntegralInRange(first, most);
    const auto rest = bytes.ConsumeRemainingBytes<std::uint8_t>();
    std::u16string text(rest.size() / sizeof(char16_t), u'\0');
    if (!text.empty()) {
        std::memcpy(text.data(), rest.data(), text.size() * sizeof(char16_t));
    }
    const int number = TypedNumber(text, first, last);
    Require(number == Reference(text, first, last), "the number is that of the leading digits");
    Require(number >= first && number <= last, "the number is offered");
    const std::string written = std::to_string(number);
    Require(TypedNumber(std::u16string(written.begin(), written.end()), first, last) == number,
            "a corrected text stays as it is");
}

} // namespace KAL_AUTO_Node
