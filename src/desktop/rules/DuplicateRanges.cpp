#include "rules/DuplicateRanges.h"

#include "form/GUI.h"
#include "form/LongOperation.h"
#include "rules/Gathering.h"

namespace KAL_AUTO_Node {

std::optional<QString> CheckForDuplicateRanges(GUI& gui) {
    const LongOperation checking(gui);
    LongOperation::ShowProgress(gui, "Checking for duplicate ranges. Please wait...");
    const auto duplicates = DuplicateEntries(GatherActions(gui));
    gui.StatusBar1->SetPanelText(QString());
    return duplicates.empty() ? std::nullopt
                              : std::optional(gui.LVActions->Key(static_cast<int>(duplicates.front())));
}

} // namespace KAL_AUTO_Node
