#pragma once

#include "bench/Content.h"
#include "bench/Pairs.h"

namespace KAL_AUTO_Node {

void AddOpenPairs(Pairs& pairs, const TestStore& store);
void AddLoadSavePairs(Pairs& pairs, const TestStore& store);
void AddCheckPairs(Pairs& pairs, const TestStore& store);
void AddListPairs(Pairs& pairs);
void AddPickerPairs(Pairs& pairs);

// Opens the editor as a host does, and closes it when it has painted once. Returns the seconds until then.
double OpenToFirstPaint(Place place);

} // namespace KAL_AUTO_Node
