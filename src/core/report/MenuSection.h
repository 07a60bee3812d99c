#pragma once

#include "report/ReportNodes.h"

#include <string>

namespace KAL_AUTO_Node {

struct NodeChange;

// What a report tells of one menu, as a section of the page. The change is none where nothing is compared, or
// nothing differs.
[[nodiscard]] std::string MenuSection(const ReportData& data, const ReportNodes& nodes, int number,
                                      const NodeChange* change);

// What is found of a node, as a list; nothing where that is nothing.
[[nodiscard]] std::string FindingsMarkup(const std::vector<Finding>& findings);

// A text of the program's own in which `words` are commands.
[[nodiscard]] std::string AdviceMarkup(std::string_view text);

} // namespace KAL_AUTO_Node
