#pragma once

#include "report/FlowPicture.h"

#include <map>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// By kind, the worst first: each finding with its holder's texts.
using FindingsByFault = std::map<Fault, std::vector<const Finding*>>;
[[nodiscard]] FindingsByFault ByFault(const ReportData& data);

// Sections of the page. All that is found, by kind; messages; nodes of other types.
void WriteFindings(const FindingsByFault& findings, const ReportNodes& nodes, const ReportSink& append);
void WriteMessages(const ReportData& data, const ReportNodes& nodes, const ReportSink& append);
void WriteOthers(const ReportData& data, const ReportNodes& nodes, const ReportSink& append);

} // namespace KAL_AUTO_Node
