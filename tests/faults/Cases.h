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

// The process is killed at a write.
void KillSaves(Extent extent, const Tell& tell);
void KillCreations(Extent extent, const Tell& tell);
void KillPutBacks(Extent extent, const Tell& tell);

// Savers of one node at the same time, from the same state.
void RaceSaves(Extent extent, const Tell& tell);
// A save that is held for so long that it is taken for dead from elsewhere.
void TakeOverSaves(Extent extent, const Tell& tell);

// A write fails.
void FailWrites(Extent extent, const Tell& tell);
void FailWritesOfPutBacks(Extent extent, const Tell& tell);
void FailWritesOfCreations(Extent extent, const Tell& tell);
void FailFirstSaves(Extent extent, const Tell& tell);

// What befalls the file.
void FillDisks(Extent extent, const Tell& tell);
void LockStores(Extent extent, const Tell& tell);
void MoveFiles(Extent extent, const Tell& tell);
void ProtectFiles(Extent extent, const Tell& tell);

} // namespace KAL_AUTO_Node
