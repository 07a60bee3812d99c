#pragma once

#include "report/FlowPicture.h"
#include "report/ReportChanges.h"
#include "report/ReportData.h"

#include <cstddef>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// What a page tells of itself.
struct ReportHead {
    std::string place;   // where the store lies
    std::string written; // when, as people read it
};

struct ReportOutcome {
    std::size_t menus = 0;
    std::size_t findings = 0;
    std::vector<std::string> warnings; // what the page lacks, visible
};

// Writes a partition as one page of HTML that needs nothing else: for people who read, search, print and send
// it. Nothing in it is loaded from elsewhere, and no text of the store is markup or script. Changes are none
// where nothing is compared. Besides its place and time it is the same for the same content.
[[nodiscard]] ReportOutcome WriteReport(const ReportData& data, const ReportHead& head,
                                        const ReportChanges* changes, const ReportSink& append,
                                        const ReportProgress& progress);

} // namespace KAL_AUTO_Node
