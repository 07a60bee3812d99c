#include "editor/ExceptionsList.h"

#include "controls/Visibility.h"
#include "rules/Rows.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

std::vector<Slot> Slots() {
    std::vector<Slot> used;
    std::ranges::transform(Branches, std::back_inserter(used), &Branch::slot);
    return used;
}

} // namespace

ExceptionsList::ExceptionsList(GUI& gui, UndoStack& undo)
    : ReferenceList(
          gui, undo,
          {gui.LVExceptions, gui.cmdExceptionsEdit, {gui.cmdExceptionsEdit, gui.cmdExceptionsDefault}},
          {.kind = RowKind::Exceptions,
           .numberlessType = NumberlessExceptionType,
           .numberlessOpens = true,
           .numberNeedsHighlight = true,
           .browsingSelection = QAbstractItemView::SingleSelection,
           .resetColumns = &GUI::ResetExceptionsListView},
          Slots()) {
    connect(gui.cmdExceptionsDefault, &QPushButton::clicked, this, &ExceptionsList::Default_Click);
}

void ExceptionsList::Default_Click() {
    Handle(*Form().cmdExceptionsDefault, "Click", [this] {
        std::vector<ListRow> rows;
        for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
            const auto& [slot, label, column, type, number] = Branches[branch];
            rows.push_back(ExceptionRow(branch, {type, Form().NodeName(type).toStdString(), number, {}}));
        }
        List().SetRows(std::move(rows));
        MarkChanged();
    });
}

void ExceptionsList::TakeIn(std::vector<ListRow> rows) {
    for (ListRow& row : rows) {
        const auto place = static_cast<int>(BranchOf(row.slot));
        List().SetRow(place, std::move(row));
    }
}

Slot ExceptionsList::SlotOf(int row) const {
    return Branches.at(std::min(static_cast<std::size_t>(row), Branches.size() - 1)).slot;
}

void ExceptionsList::ChooseNumberless(Slot /*slot*/) {
    if (const int row = List().SelectedItem(); row >= 0) {
        WriteNumberless(row);
    }
}

void ExceptionsList::ShowNoNumber(Slot slot, int type) {
    // An invalid entry may be answered by a command of which the partition has none yet.
    if (slot == Slot::Invalid && type == UncheckedCommandType) {
        Form().NumberPicker(slot)->SetText(QStringLiteral("1"));
    }
}

void ExceptionsList::MouseUp() {
    for (const Branch& exception : Branches) {
        if (PickList* picker = Form().NodePicker(exception.slot); !IsHiddenByCode(*picker)) {
            picker->setFocus(Qt::MouseFocusReason);
            return;
        }
    }
}

} // namespace KAL_AUTO_Node
