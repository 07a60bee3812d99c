#include "form/GUI.h"
#include "form/QuickAssignForm.h"
#include "nodes/TypeCatalogue.h"
#include "rules/NodeRules.h"

namespace KAL_AUTO_Node {

namespace {

template <class Offered>
void LoadTypes(const PickList& source, PickList& types, Offered offered) {
    types.Clear();
    for (int i = 0; i < source.ListCount(); ++i) {
        if (offered(source.ItemData(i))) {
            types.AddItem(source.List(i), source.ItemData(i));
        }
    }
    if (types.ListCount() > 0) {
        types.SetListIndex(0);
    }
}

} // namespace

void NodeRules::LoadQuickAssignPromptsTypes(const GUI& gui, QuickAssignForm& form) {
    LoadTypes(*gui.NodePicker(Slot::Prompts), *form.cmbNodeTypes,
              [](int type) { return type == MessageType || type == UncheckedCommandType; });
}

void NodeRules::LoadQuickAssignActionsTypes(const GUI& gui, QuickAssignForm& form) {
    LoadTypes(*gui.NodePicker(Slot::Actions), *form.cmbNodeTypes, [](int) { return true; });
}

void NodeRules::LoadQuickAssignNumbers(const GUI& gui, QuickAssignForm& form) {
    const int type = form.cmbNodeTypes->SelectedData();
    const int last = ReadAssignableNumbers(dataBase_, PartitionOf(gui), type);
    for (NumberBox* box : {form.cmbFrom, form.cmbTo}) {
        box->SetNumbers(1, last);
        if (box->ListCount() > 0) {
            box->SetListIndex(0);
        }
    }
}

} // namespace KAL_AUTO_Node
