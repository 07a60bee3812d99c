#pragma once

#include "Report.h"

#include <functional>

namespace KAL_AUTO_Node {

// How thoroughly: each of the cases takes every write in turn, and every try, or a few of them.
struct Extent {
    bool atLength;

    [[nodiscard]] int Of(int atLengthCount, int briefCount) const {
        return atLength ? atLengthCount : briefCount;
    }
};

using Tell = std::function<void(const Row&)>;

using Case = void(Extent, const Tell&);

// The process is killed at a write.
Case KillSaves, KillCreations, KillPutBacks;

// Savers of one node at the same time, from the same state.
Case RaceSaves;
// A save that is held for so long that it is taken for dead from elsewhere.
Case TakeOverSaves;

// A write fails.
Case FailWrites, FailWritesOfPutBacks, FailWritesOfCreations, FailFirstSaves;

// What befalls the file.
Case FillDisks, LockStores, MoveFiles, ProtectFiles;

} // namespace KAL_AUTO_Node
