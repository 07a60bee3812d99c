#include "feedback/ErrorReport.h"
#include "form/GUI.h"
#include "rules/NodeRules.h"

namespace KAL_AUTO_Node {

void NodeRules::ResetAllGUIListView(GUI& gui) {
    Reporting("ResetAllGUIListView", [&] {
        gui.ResetPromptsListView();
        gui.ResetActionsListView();
        gui.ResetExceptionsListView();
    });
}

void NodeRules::HideInPlaceEditors(GUI& gui) {
    for (QWidget* editor : gui.InPlaceEditors()) {
        editor->hide();
    }
}

} // namespace KAL_AUTO_Node
