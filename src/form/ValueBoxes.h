#pragma once

#include "form/GUI.h"

#include <array>

namespace KAL_AUTO_Node {

// The numeric settings of a node: the box, the stored column, and the whole numbers that the box offers.
struct ValueBoxRule {
    NumberBox* GUI::*box;
    const char* column;
    int first;
    int last;
};

inline constexpr std::array<ValueBoxRule, 4> ValueBoxRules = {{
    {&GUI::cmbNumDigits, "NumberOfDigits", 1, 7},
    {&GUI::cmbRetryLimit, "RetryLimit", 0, 5},
    {&GUI::cmbSelTimeOut, "SelectionTimeout", 1, 60},
    {&GUI::cmbDigitTimeOut, "DigitTimeout", 1, 15},
}};

inline constexpr std::array<const char*, 4> TerminatingDigits = {"No", "*", "#", "*/#"};

} // namespace KAL_AUTO_Node
