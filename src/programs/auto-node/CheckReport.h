#pragma once

#include <filesystem>

namespace KAL_AUTO_Node {

// Prints what a check of a whole store finds. Raises what keeps it from that.
void PrintCheckOf(const std::filesystem::path& store);

} // namespace KAL_AUTO_Node
