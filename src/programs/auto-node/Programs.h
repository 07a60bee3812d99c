#pragma once

#include <filesystem>
#include <string>

namespace KAL_AUTO_Node {

// A program that this one starts: beside it where both were built, else where it is installed.
[[nodiscard]] std::filesystem::path ProgramOfOurs(const std::string& name);

} // namespace KAL_AUTO_Node
