#pragma once

#include "report/ReportNodes.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// Takes the page as it is written, part by part.
using ReportSink = std::function<void(std::string_view part)>;
// Told again and again of what is done.
using ReportProgress = std::function<void(const std::function<std::string()>& text)>;

// The whole flow as a section of the page: one picture, or one of each part in which the menus hang together
// and a map of those; of very many menus a list of the parts. Where dot is missing or fails, the page tells
// it, and so do the warnings.
void WriteFlowPictures(const ReportData& data, const ReportNodes& nodes, const ReportSink& append,
                       std::vector<std::string>& warnings, const ReportProgress& progress);

} // namespace KAL_AUTO_Node
