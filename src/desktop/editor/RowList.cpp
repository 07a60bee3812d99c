#include "editor/RowList.h"

#include "feedback/MessageBox.h"
#include "feedback/MousePointer.h"

namespace KAL_AUTO_Node {

RowList::RowList(GUI& gui, UndoStack& undo, const ComponentFactory& components, ListView* list,
                 Buttons buttons, Traits traits, RowTraits rowTraits)
    : ReferenceList(gui, undo,
                    {list,
                     buttons.edit,
                     {buttons.add, buttons.insert, buttons.remove, buttons.edit, buttons.up, buttons.down,
                      buttons.quick}},
                    traits, {rowTraits.slot}),
      components_(components), buttons_(buttons), rowTraits_(rowTraits) {
    connect(buttons_.add, &QPushButton::clicked, this, &RowList::Add_Click);
    connect(buttons_.insert, &QPushButton::clicked, this, &RowList::Insert_Click);
    connect(buttons_.remove, &QPushButton::clicked, this, &RowList::Remove_Click);
    connect(buttons_.up, &QPushButton::clicked, this, [this] { Move_Click(*buttons_.up, -1); });
    connect(buttons_.down, &QPushButton::clicked, this, [this] { Move_Click(*buttons_.down, +1); });
    connect(buttons_.quick, &QPushButton::clicked, this, &RowList::Quick_Click);
    connect(list, &ListView::Dragged, this, &RowList::Dragged);
    connect(list, &ListView::KeyDown, this, [this](int key) {
        Handle(List(), "KeyDown", [&] {
            if (key == Qt::Key_Delete) {
                Remove_Click();
            }
        });
    });
}

ListRow RowList::NewRow(int position) {
    ChooseDefaultType();
    if (NumberPicker().ListCount() > 0) {
        NumberPicker().SetListIndex(0);
    }
    // A type that offers no number leaves the box empty, and a reference without a number could not be
    // stored.
    const int number = NumberPicker().Text().isEmpty() ? 1 : NumberPicker().Text().toInt();
    const int type = NodePicker().SelectedData();
    return MakeRow(position, {type, Form().NodeName(type).toStdString(), number, {}});
}

void RowList::ShowNewRow(int row) {
    List().Select(row);
    HideEditors();
    MarkChanged();
}

void RowList::Add_Click() {
    Handle(*buttons_.add, "Click", [this] {
        if (!MayMakeRows()) {
            return;
        }
        const Hourglass busy;
        BeforeAppending();
        List().ClearSelection();
        const int row = List().Count();
        List().Insert(row, {NewRow(row + 1)});
        ShowNewRow(row);
    });
}

void RowList::Insert_Click() {
    Handle(*buttons_.insert, "Click", [this] {
        if (!MayMakeRows()) {
            return;
        }
        if (InsertsOtherwise(List().GetSelectedCount() == 1)) {
            return;
        }
        const Hourglass busy;
        const int row = List().SelectedRows().front();
        List().ClearSelection();
        List().Insert(row, {NewRow(row + 1)});
        ShowNewRow(row);
    });
}

void RowList::Remove_Click() {
    Handle(*buttons_.remove, "Click", [this] {
        const std::vector<int> selected = List().SelectedRows();
        if (selected.empty()) {
            return;
        }
        const Hourglass busy;
        const int next = selected.size() == 1 ? selected.front() : 0;
        List().Remove(selected);
        if (List().Count() == 0) {
            AfterEmptied();
        }
        if (List().Count() > 0) {
            List().Select(std::min(next, List().Count() - 1));
        }
        MarkChanged();
    });
}

void RowList::TakeIn(std::vector<ListRow> rows) {
    const Hourglass busy;
    const std::vector<int> selected = List().SelectedRows();
    const int before = List().Count();
    BeforeAppending();
    // What that took out stood first.
    const int gone = before - List().Count();
    const int at = selected.size() == 1 ? std::max(0, selected.front() - gone) : List().Count();
    const auto count = static_cast<int>(rows.size());
    List().Insert(at, std::move(rows));
    List().Select(at, count);
}

void RowList::Move_Click(const QPushButton& button, int distance) {
    Handle(button, "Click", [&] {
        if (List().GetSelectedCount() == 1) {
            const int row = List().SelectedRows().front();
            const int other = row + distance;
            if (other >= 0 && other < List().Count()) {
                List().Swap(row, other);
                List().Select(other);
            }
        }
        MarkChanged();
    });
}

void RowList::Dragged(int place) {
    Handle(List(), "DragDrop", [&] {
        if (const std::vector<int> rows = List().SelectedRows(); !rows.empty()) {
            List().Move(rows, place);
            MarkChanged();
        }
    });
}

void RowList::Quick_Click() {
    Handle(*buttons_.quick, "Click", [this] {
        QuickAssignDialog dialog(Form(), components_);
        (dialog.*rowTraits_.prepareQuick)();
        if (dialog.Form().cmbNodeTypes->ListCount() == 0) {
            Inform("Please check the \"Max Number of each Node\" Section in Partition Settings.");
            return;
        }
        dialog.Form().setWindowTitle(QString::fromLatin1(rowTraits_.quickCaption) + Form().cmbNode->Text());
        MarkChanged();
        dialog.Caller = rowTraits_.quickList;
        dialog.ShowModal();
    });
}

} // namespace KAL_AUTO_Node
