#include "nodes/Settings.h"

#include "platform/FoldCase.h"

#include <algorithm>

namespace KAL_AUTO_Node {

int ValueOf(const SettingRule& rule, const Settings& settings) {
    const auto value = (settings.*rule.value).value_or(rule.first);
    return value >= rule.first && value <= rule.last ? static_cast<int>(value) : rule.first;
}

std::size_t TerminatingDigitOf(const Settings& settings) {
    const std::string stored = FoldCase(settings.terminatingDigit.value_or(""));
    const auto known = std::ranges::find(TerminatingDigits, stored, FoldCase);
    return known == TerminatingDigits.end() ? 0 : static_cast<std::size_t>(known - TerminatingDigits.begin());
}

} // namespace KAL_AUTO_Node
