#pragma once

#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// What the head of a store says that was made here. A store of another program says something else or
// nothing, and is taken as it is.
inline constexpr int StoreApplicationId = 0x4155544F; // "AUTO"
// Of the tables. A store of a later version is left alone.
inline constexpr int StoreVersion = 2;

// Raises StoreNotRecognized for a store of a version that is not known here yet.
void RequireKnownVersion(int version, const std::string& place);

// On a server the comment of the table Node_AUTO says it, of which this is the text; and the version that a
// comment tells, 0 where it tells none.
[[nodiscard]] std::string VersionComment(int version = StoreVersion);
[[nodiscard]] int VersionIn(std::string_view comment);

} // namespace KAL_AUTO_Node
