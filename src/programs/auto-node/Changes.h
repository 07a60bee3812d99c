#pragma once

#include "history/Changes.h"

#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class TypeNames;
struct RepointPlan;
struct RowPlan;

// A line for each; one that says so where there are none.
void PrintChanges(const std::vector<std::string>& changes);

// How many rows a plan changes; and writes it into a file, whole or not at all, and tells so.
void PrintCounts(const std::string& done, const RowPlan& plan);
void WritePlan(const std::string& file, const RowPlan& plan);

// A line for each reference that leads elsewhere.
void PrintRepointed(const RepointPlan& plan, const TypeNames& names);

} // namespace KAL_AUTO_Node
