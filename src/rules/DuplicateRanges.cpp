#include "rules/DuplicateRanges.h"

#include "form/GUI.h"
#include "form/LongOperation.h"
#include "nodes/ScratchList.h"

#include <ranges>

namespace KAL_AUTO_Node {

std::optional<QString> CheckForDuplicateRanges(GUI& gui) {
    const LongOperation checking(gui);
    LongOperation::ShowProgress(gui, "Checking for duplicate ranges. Please wait...");
    const ListView& list = *gui.LVActions;
    const auto duplicate =
        FirstDuplicate(std::views::iota(0, list.Count()) | std::views::transform([&](int row) {
                           return list.Cell(row, LeadColumn).toStdString();
                       }));
    gui.StatusBar1->SetPanelText(QString());
    return duplicate ? std::optional(list.Row(static_cast<int>(*duplicate)).key) : std::nullopt;
}

} // namespace KAL_AUTO_Node
