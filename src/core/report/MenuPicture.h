#pragma once

#include "report/ReportNodes.h"

#include <string>

namespace KAL_AUTO_Node {

// The surroundings of a menu as a picture: what leads there, itself, what it leads to. Three columns need
// nothing that lays them out: they are lists, and the style sheet draws the lines. A thousand drawings would
// take a browser longer to read than all else of the page.
[[nodiscard]] std::string MenuPicture(const ReportData& data, const ReportNodes& nodes, int number);

} // namespace KAL_AUTO_Node
