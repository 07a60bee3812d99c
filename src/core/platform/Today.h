#pragma once

#include <string>

namespace KAL_AUTO_Node {

// Today's date as dates are stored: text in the short date format of the system's locale.
[[nodiscard]] std::string Today();

} // namespace KAL_AUTO_Node
