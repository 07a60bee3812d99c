#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace KAL_AUTO_Node {

// How a node collects digits, as it is stored; nothing stands for Null.
struct Settings {
    std::optional<std::int64_t> numberOfDigits;
    std::optional<std::string> terminatingDigit;
    std::optional<std::int64_t> retryLimit;
    std::optional<std::int64_t> selectionTimeout; // seconds
    std::optional<std::int64_t> digitTimeout;     // seconds

    friend bool operator==(const Settings&, const Settings&) = default;
};

// A numeric setting: its stored column, its name and unit for people, and the whole numbers that it may hold.
struct SettingField {
    std::optional<std::int64_t> Settings::*value;
    const char* column;
    const char* name;
    const char* unit;
    int first;
    int last;
};

inline constexpr std::array<SettingField, 4> SettingFields = {{
    {&Settings::numberOfDigits, "NumberOfDigits", "number of digits", "", 1, 7},
    {&Settings::retryLimit, "RetryLimit", "retry limit", "", 0, 5},
    {&Settings::selectionTimeout, "SelectionTimeout", "selection time-out", " s", 1, 60},
    {&Settings::digitTimeout, "DigitTimeout", "digit time-out", " s", 1, 15},
}};

// The value that stands for a stored one: itself where the setting may hold it, else the first that it may.
[[nodiscard]] int ValueOf(const SettingField& rule, const Settings& settings);

// It for people, with its unit; where the setting may not hold what is stored, both.
[[nodiscard]] std::string SettingText(const SettingField& rule, const Settings& settings);

inline constexpr std::array<const char*, 4> TerminatingDigits = {"No", "*", "#", "*/#"};

// Whether a setting is stored with one of its values.
[[nodiscard]] bool IsWithin(const SettingField& rule, const Settings& settings);
[[nodiscard]] bool IsTerminatingDigit(const Settings& settings);

// The position among the terminating digits, whatever the stored text's case; 0 for any other.
[[nodiscard]] std::size_t TerminatingDigitOf(const Settings& settings);
[[nodiscard]] std::string TerminatingDigitText(const Settings& settings);

} // namespace KAL_AUTO_Node
