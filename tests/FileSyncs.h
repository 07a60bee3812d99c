#pragma once

#include <functional>

namespace KAL_AUTO_Node {

// How often files of each kind were synced to disk.
struct FileSyncs {
    int log = 0;      // the write-ahead log
    int database = 0; // the store's file itself
    int other = 0;

    bool operator==(const FileSyncs&) const = default;
};

// From now on the engine's syncs are counted, on connections opened from now on.
void StartCountingSyncs();

// The syncs during a work.
[[nodiscard]] FileSyncs SyncsOf(const std::function<void()>& work);

} // namespace KAL_AUTO_Node
