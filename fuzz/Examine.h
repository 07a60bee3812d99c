#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace KAL_AUTO_Node {

// What a target does with one input of any bytes.
void Examine(std::string_view input);

// Ends the process where something does not hold that has to hold for every input.
inline void Require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", what);
        std::abort();
    }
}

} // namespace KAL_AUTO_Node
