#pragma once

#include "diagram/Sections.h"

#include <string>

namespace KAL_AUTO_Node {

// The sections as a graph for dot, each a node that leads to the place section_N of a page, with how many
// ways lead from one to another. Those without AUTO nodes are left out, as in AutoNodesBySection.
[[nodiscard]] std::string SectionMapText(const CallFlow& flow, const Outline& outline);

} // namespace KAL_AUTO_Node
