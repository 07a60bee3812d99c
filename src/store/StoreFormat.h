#pragma once

namespace KAL_AUTO_Node {

// What the head of a store says that was made here. A store of another program says something else or
// nothing, and is taken as it is.
inline constexpr int StoreApplicationId = 0x4155544F; // "AUTO"
// Of the tables. A store of a later version is left alone.
inline constexpr int StoreVersion = 1;

} // namespace KAL_AUTO_Node
