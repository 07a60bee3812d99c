#pragma once

#include "nodes/AutoNode.h"

#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class TypeNames;
struct RepointPlan;

// What turns one state of a node into another, in words; nothing stands for no node.
[[nodiscard]] std::vector<std::string> ChangesInWords(const std::optional<AutoNode>& before,
                                                      const std::optional<AutoNode>& after);

// A line for each; one that says so where there are none.
void PrintChanges(const std::vector<std::string>& changes);

// A line for each reference that leads elsewhere.
void PrintRepointed(const RepointPlan& plan, const TypeNames& names);

} // namespace KAL_AUTO_Node
