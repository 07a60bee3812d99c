#pragma once

#include "platform/VisibleText.h"

#include <iostream>
#include <string>

namespace KAL_AUTO_Node {

// Tells a person at a terminal what went wrong. What is stored, or what an engine says of it, may be part of
// the text.
inline void TellError(const std::string& error) { std::cerr << "auto-node: " << VisibleLines(error) << '\n'; }

} // namespace KAL_AUTO_Node
