#pragma once

#include "nodes/Settings.h"
#include "store/DataBase.h"

#include <optional>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// Fields of a row of Node_AUTO; nothing stands for Null.
[[nodiscard]] std::optional<std::string> OptionalText(const ResultSet& row, std::string_view column);
[[nodiscard]] Settings ReadSettings(const ResultSet& row);

} // namespace KAL_AUTO_Node
