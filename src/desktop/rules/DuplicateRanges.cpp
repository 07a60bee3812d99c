#include "rules/DuplicateRanges.h"

#include "form/GUI.h"
#include "form/LongOperation.h"
#include "nodes/ScratchList.h"

#include <string>
#include <vector>

namespace KAL_AUTO_Node {

std::optional<QString> CheckForDuplicateRanges(GUI& gui) {
    const LongOperation checking(gui);
    LongOperation::ShowProgress(gui, "Checking for duplicate ranges. Please wait...");
    const ListView& list = *gui.LVActions;
    std::vector<std::string> entries;
    entries.reserve(static_cast<std::size_t>(list.Count()));
    for (int row = 0; row < list.Count(); ++row) {
        entries.push_back(list.Cell(row, LeadColumn).toStdString());
    }
    const auto duplicate = FirstDuplicate(entries);
    gui.StatusBar1->SetPanelText(QString());
    return duplicate ? std::optional(list.Key(static_cast<int>(*duplicate))) : std::nullopt;
}

} // namespace KAL_AUTO_Node
