#pragma once

#include <functional>

namespace KAL_AUTO_Node {

// What befalls a write of the engine's: of bytes, of a file's end, of a file's removal, of a sync.
enum class DiskFault {
    None,
    Kill,        // the process is killed before it
    InputOutput, // it fails as on a broken disk
    Full,        // it fails as on a full disk; a sync or a removal does not
    Pause,       // it waits for what is called then
};

// How often files of each kind were synced to disk.
struct FileSyncs {
    int log = 0;      // the write-ahead log
    int database = 0; // the store's file itself
    int other = 0;

    bool operator==(const FileSyncs&) const = default;
};

// From now on the engine works through this program, on connections opened from now on.
void StartFaultySystem();

// The syncs during a work.
[[nodiscard]] FileSyncs SyncsOf(const std::function<void()>& work);

// From now on writes are counted, from 1, and the one of that number meets the fault; where it lasts, those
// after it do too.
void Arm(DiskFault fault, int at, bool lasting, std::function<void()> pause);
void Disarm();
[[nodiscard]] int WritesSinceArmed();

} // namespace KAL_AUTO_Node
