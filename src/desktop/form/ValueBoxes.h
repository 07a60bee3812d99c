#pragma once

#include "form/GUI.h"
#include "nodes/Settings.h"

#include <array>

namespace KAL_AUTO_Node {

// The boxes of a node's numeric settings, in the settings' order.
struct ValueBox {
    NumberBox* GUI::*box;
    const SettingField& setting;
};

inline constexpr std::array<ValueBox, 4> ValueBoxes = {{
    {&GUI::cmbNumDigits, SettingFields[0]},
    {&GUI::cmbRetryLimit, SettingFields[1]},
    {&GUI::cmbSelTimeOut, SettingFields[2]},
    {&GUI::cmbDigitTimeOut, SettingFields[3]},
}};

} // namespace KAL_AUTO_Node
