#pragma once

#include "Report.h"

#include <functional>

namespace KAL_AUTO_Node {

// How thoroughly: each of the cases takes every write in turn, and every try, or a few of them.
struct Extent {
    bool atLength;
    unsigned seed = 1; // of what is done at random

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
// A save that is held for so long that it is taken for dead from elsewhere.
Case TakeOverSaves;

// Processes that do with some nodes whatever can be done, of which some order has to explain what each saw;
// what breaks the store in the meantime is called now and then.
Case RecordInFiles;
void RecordOnServer(Extent extent, const Tell& tell, const std::function<void()>& breakDown);
// What is wrong is found.
Case PlantFaults;

// What is decided on a question that stood open for long.
Case AnswerLate;

// No memory is left for a moment.
Case FailAllocations;

// What befalls the file.
Case LockStores, ProtectFiles;

} // namespace KAL_AUTO_Node
