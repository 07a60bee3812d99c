#pragma once

#include "bench/Content.h"

#include <iosfwd>

namespace KAL_AUTO_Node {

// What stands under the table. Each prints a heading and Markdown.

// What was used: processor, toolkit and engine.
void PrintMachine(std::ostream& out);
// File syncs of a save, of the editor and raw.
void PrintSyncs(std::ostream& out, const TestStore& store);
// Peak memory of a fresh process of this program that opens the editor, per size.
void PrintMemory(std::ostream& out);
// Whether the floors run the statements that the editor runs, with the same values in the same order. Returns
// it, too.
bool PrintStatements(std::ostream& out, const TestStore& store);

inline constexpr const char* MemoryFlag = "--memory";

// In the process run again: opens the editor, or a bare window for partition 0, and prints the peak.
int PrintOwnMemory(Place place);

} // namespace KAL_AUTO_Node
