#include "editor/PromptsList.h"

#include "controls/Visibility.h"
#include "feedback/MessageBox.h"

namespace KAL_AUTO_Node {

PromptsList::PromptsList(GUI& gui, UndoStack& undo, const ComponentFactory& components)
    : RowList(gui, undo, components, gui.LVPrompts,
              {gui.cmdPromptsEdit, gui.cmdPromptsAdd, gui.cmdPromptsInsert, gui.cmdPromptsRemove,
               gui.cmdPromptsUp, gui.cmdPromptsDown, gui.cmdQuickPrompts},
              {.kind = RowKind::Prompts,
               .numberlessType = NumberlessType,
               .numberlessOpens = true,
               .numberNeedsHighlight = true,
               .browsingSelection = QAbstractItemView::ExtendedSelection,
               .resetColumns = &GUI::ResetPromptsListView},
              {.slot = Slot::Prompts,
               .quickList = QuickAssignDialog::List::Prompts,
               .prepareQuick = &QuickAssignDialog::PreparePromptsTypes,
               .quickCaption = "Quick Prompts Editor for "}) {}

bool PromptsList::InsertsOtherwise(bool oneSelected) {
    if (!oneSelected) {
        return true;
    }
    if (HoldsEmptyRow(List())) {
        Add_Click();
        return true;
    }
    return false;
}

void PromptsList::BeforeAppending() { RemoveEmptyRow(List()); }

void PromptsList::ChooseDefaultType() {
    if (Form().Lists().NotAvailablePromptsNode.Count() > 0) {
        NodePicker().SetListIndex(0);
    } else {
        NodePicker().SetText(QStringLiteral("MSG"));
    }
}

ListRow PromptsList::MakeRow(int /*position*/, const Reference& target) const { return PromptRow(target); }

void PromptsList::AfterEmptied() {
    List().Insert(0, {EmptyRow(Form().NodeName(NumberlessType))});
    Form().SetNodePickerWidth(Slot::Prompts, GUI::WidePicker);
}

void PromptsList::ChooseNumberless(Slot slot) {
    const int row = List().SelectedItem();
    if (row < 0 || List().Row(row).typeID == NumberlessType) {
        return;
    }
    const auto answer = MsgBox(QStringLiteral("Do you want to vacate Prompts Table?"), QMessageBox::Question,
                               QMessageBox::Yes | QMessageBox::No, QStringLiteral("Confirmation"));
    if (answer == QMessageBox::Yes) {
        HideEditors();
        ListRow empty = EmptyRow(Form().NodeName(NumberlessType));
        empty.shown = NodePicker().Text();
        List().SetRows({std::move(empty)});
    } else {
        Form().SetNodePickerWidth(slot, GUI::NarrowPicker);
        NodePicker().SetText(List().Row(row).name);
    }
}

void PromptsList::MouseUp() {
    if (!IsHiddenByCode(NodePicker())) {
        NodePicker().setFocus(Qt::MouseFocusReason);
    }
}

} // namespace KAL_AUTO_Node
