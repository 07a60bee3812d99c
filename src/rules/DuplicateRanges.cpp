#include "rules/DuplicateRanges.h"

#include "form/GUI.h"
#include "form/LongOperation.h"

namespace KAL_AUTO_Node {

std::optional<QString> CheckForDuplicateRanges(GUI& gui) {
    const LongOperation checking(gui);
    LongOperation::ShowProgress(gui, "Checking for duplicate ranges. Please wait...");
    gui.lstRange->Clear();
    std::optional<QString> duplicate;
    for (int row = 0; row < gui.LVActions->Count() && !duplicate; ++row) {
        const QString& entry = gui.LVActions->Cell(row, LeadColumn);
        if (gui.lstRange->FindStringExact(entry) >= 0) {
            duplicate = gui.LVActions->Row(row).key;
        } else {
            gui.lstRange->AddItem(entry);
        }
    }
    gui.StatusBar1->SetPanelText(QString());
    return duplicate;
}

} // namespace KAL_AUTO_Node
