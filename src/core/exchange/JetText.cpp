#include "exchange/JetText.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <system_error>

namespace KAL_AUTO_Node {

namespace {

constexpr std::int64_t MillisecondsPerDay = 86'400'000;

// 0100-01-01 and 9999-12-31 as the file counts days.
constexpr double FirstDay = -657'434;
constexpr double LastDay = 2'958'465;

// Two digits stand for these years, as the programs of the suite read them.
constexpr int FirstShortYear = 1930;
constexpr int LastShortYear = 2029;

std::string DayText(std::int64_t day) {
    using namespace std::chrono;
    const year_month_day date(sys_days(year(1899) / December / 30) + days(day));
    const int year = static_cast<int>(date.year());
    const bool isShort = year >= FirstShortYear && year <= LastShortYear;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), isShort ? "%02u/%02u/%02d" : "%02u/%02u/%04d",
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                  isShort ? year % 100 : year);
    return text.data();
}

std::string TimeText(std::int64_t milliseconds) {
    const auto part = [&](std::int64_t unit, std::int64_t limit) {
        return static_cast<int>(milliseconds / unit % limit);
    };
    std::array<char, 32> text{};
    const char* form = part(1, 1000) != 0    ? "%02d:%02d:%02d.%03d"
                       : part(1000, 60) != 0 ? "%02d:%02d:%02d"
                                             : "%02d:%02d";
    std::snprintf(text.data(), text.size(), form, part(3'600'000, 24), part(60'000, 60), part(1000, 60),
                  part(1, 1000));
    return text.data();
}

void AppendUtf8(std::string& text, std::uint32_t code) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
        tail(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | code >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | code >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

// A run of bytes, each the lower half of a unit whose upper half is 0, up to a NUL; then one of whole units,
// up to another; and so on.
std::optional<std::u16string> Units(std::string_view bytes) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    std::u16string units;
    bool compressed = false;
    const bool marked = bytes.size() >= 2 && byte(0) == 0xFF && byte(1) == 0xFE;
    if (marked) {
        compressed = true;
        bytes.remove_prefix(2);
    }
    for (std::size_t at = 0; at < bytes.size();) {
        if (marked && byte(at) == 0) {
            compressed = !compressed;
            ++at;
        } else if (compressed) {
            units += static_cast<char16_t>(byte(at++));
        } else if (at + 1 < bytes.size()) {
            units += static_cast<char16_t>(byte(at) | byte(at + 1) << 8);
            at += 2;
        } else {
            return std::nullopt;
        }
    }
    return units;
}

template <class Number>
std::string ShortestText(Number number) {
    std::array<char, 64> text{};
    const auto [end, failure] = std::to_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc() ? std::string(text.data(), end) : std::string();
}

} // namespace

std::optional<std::string> JetDateText(double date) {
    if (!(date >= FirstDay && date < LastDay + 1)) {
        return std::nullopt;
    }
    // Before the first day the date counts backwards and the time still forwards.
    const double whole = std::trunc(date);
    auto day = static_cast<std::int64_t>(whole);
    auto time = std::llround(std::abs(date - whole) * static_cast<double>(MillisecondsPerDay));
    if (time == MillisecondsPerDay) {
        time = 0;
        ++day;
    }
    if (day == 0) {
        return TimeText(time);
    }
    return time == 0 ? DayText(day) : DayText(day) + ' ' + TimeText(time);
}

std::optional<std::string> JetUnicodeText(std::string_view bytes) {
    const auto units = Units(bytes);
    if (!units) {
        return std::nullopt;
    }
    std::string text;
    for (std::size_t at = 0; at < units->size(); ++at) {
        const std::uint32_t unit = (*units)[at];
        if (unit < 0xD800 || unit > 0xDFFF) {
            AppendUtf8(text, unit);
            continue;
        }
        const std::uint32_t next = at + 1 < units->size() ? (*units)[at + 1] : 0;
        if (unit > 0xDBFF || next < 0xDC00 || next > 0xDFFF) {
            return std::nullopt;
        }
        AppendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
        ++at;
    }
    return text;
}

std::string JetDecimalText(std::string decimal) {
    if (decimal.find('.') != std::string::npos) {
        decimal.erase(decimal.find_last_not_of('0') + 1);
        if (decimal.ends_with('.')) {
            decimal.pop_back();
        }
    }
    return decimal;
}

std::string JetNumberText(double number) { return ShortestText(number); }

std::string JetNumberText(float number) { return ShortestText(number); }

} // namespace KAL_AUTO_Node
