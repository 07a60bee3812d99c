#pragma once

#include "platform/VisibleText.h"

#include <iostream>
#include <sstream>
#include <string>

namespace KAL_AUTO_Node {

// Tells a person at a terminal what went wrong. What is stored, or what an engine says of it, may be part of
// the text.
inline void TellError(const std::string& error) {
    std::istringstream lines(error);
    const char* before = "auto-node: ";
    for (std::string line; std::getline(lines, line); before = "") {
        std::cerr << before << Visible(line) << '\n';
    }
}

} // namespace KAL_AUTO_Node
