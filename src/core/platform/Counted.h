#pragma once

#include <cstddef>
#include <string>

namespace KAL_AUTO_Node {

// A count with what is counted: "1 node", "2 nodes".
[[nodiscard]] inline std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

} // namespace KAL_AUTO_Node
