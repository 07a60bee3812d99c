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

// A write fails, or the process is killed at it.
Case BreakSaves, BreakPutBacks, BreakCreations, BreakFirstSaves;

// Savers of one node at the same time, from the same state.
Case RaceSaves;
// Processes that save it over and over.
Case KeepSaving;
// A save that is held for so long that it is taken for dead from elsewhere.
Case TakeOverSaves;

// What is decided on a question that stood open for long.
Case AnswerLate;

// What befalls the file.
Case LockStores, ProtectFiles;

} // namespace KAL_AUTO_Node
