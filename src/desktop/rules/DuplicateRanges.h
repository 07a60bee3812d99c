#pragma once

#include <QString>

#include <optional>

namespace KAL_AUTO_Node {

class GUI;

// The key of the first action row whose Entry text a row before it has too, or nothing. Ranges that overlap
// without being equal are no duplicates.
std::optional<QString> CheckForDuplicateRanges(GUI& gui);

} // namespace KAL_AUTO_Node
