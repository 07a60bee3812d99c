#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace KAL_AUTO_Node {

// A count with what is counted: "1 node", "2 nodes".
[[nodiscard]] inline std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

// A limit of time as people are told it, in whole seconds.
[[nodiscard]] inline std::string CountedSeconds(std::chrono::milliseconds limit) {
    return Counted(static_cast<std::size_t>(std::chrono::ceil<std::chrono::seconds>(limit).count()),
                   "second");
}

} // namespace KAL_AUTO_Node
