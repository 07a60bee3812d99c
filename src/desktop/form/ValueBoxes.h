#pragma once

#include "form/GUI.h"
#include "nodes/Settings.h"

#include <array>

namespace KAL_AUTO_Node {

// The boxes of a node's numeric settings, in the settings' order.
struct ValueBoxRule {
    NumberBox* GUI::*box;
    const SettingRule& setting;
};

inline constexpr std::array<ValueBoxRule, 4> ValueBoxRules = {{
    {&GUI::cmbNumDigits, SettingRules[0]},
    {&GUI::cmbRetryLimit, SettingRules[1]},
    {&GUI::cmbSelTimeOut, SettingRules[2]},
    {&GUI::cmbDigitTimeOut, SettingRules[3]},
}};

} // namespace KAL_AUTO_Node
