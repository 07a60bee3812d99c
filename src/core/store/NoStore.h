#pragma once

#include <exception>
#include <string>

namespace KAL_AUTO_Node {

// What a person is told of an error: what it says, or what to do first where it is that there is no store yet
// at the place at which the component looks.
[[nodiscard]] std::string ToldOfNoStore(const std::exception& error);

} // namespace KAL_AUTO_Node
