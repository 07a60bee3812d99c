#include "nodes/Settings.h"

#include "platform/FoldCase.h"

#include <algorithm>

namespace KAL_AUTO_Node {

bool IsWithin(const SettingField& rule, const Settings& settings) {
    return settings.*rule.value == ValueOf(rule, settings);
}

int ValueOf(const SettingField& rule, const Settings& settings) {
    const auto value = (settings.*rule.value).value_or(rule.first);
    return value >= rule.first && value <= rule.last ? static_cast<int>(value) : rule.first;
}

std::string SettingText(const SettingField& rule, const Settings& settings) {
    const auto& stored = settings.*rule.value;
    const int value = ValueOf(rule, settings);
    std::string shown = std::to_string(value) + rule.unit;
    if (stored == value) {
        return shown;
    }
    return (stored ? std::to_string(*stored) + rule.unit : "none") + " (shown as " + shown + ')';
}

std::size_t TerminatingDigitOf(const Settings& settings) {
    const std::string stored = FoldCase(settings.terminatingDigit.value_or(""));
    const auto known = std::ranges::find(TerminatingDigits, stored, FoldCase);
    return known == TerminatingDigits.end() ? 0 : static_cast<std::size_t>(known - TerminatingDigits.begin());
}

std::string TerminatingDigitText(const Settings& settings) {
    std::string shown = TerminatingDigits.at(TerminatingDigitOf(settings));
    return settings.terminatingDigit == shown
               ? shown
               : settings.terminatingDigit.value_or("none") + " (shown as " + shown + ')';
}

bool IsTerminatingDigit(const Settings& settings) {
    return settings.terminatingDigit && FoldCase(*settings.terminatingDigit) ==
                                            FoldCase(TerminatingDigits.at(TerminatingDigitOf(settings)));
}

} // namespace KAL_AUTO_Node
