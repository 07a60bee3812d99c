#include "editor/ReferenceList.h"

#include "controls/Twips.h"
#include "controls/Visibility.h"
#include "feedback/MessageBox.h"
#include "form/Shortcuts.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>

#include <algorithm>
#include <iterator>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Numbers of more digits than usual get the room that they need; the label beside them is empty then.
int NumberPickerWidth(const NumberBox& number) {
    constexpr int usual = 700; // twips
    return std::max(Pixels(usual, number), number.NumbersWidth());
}

bool IsEnter(int key) { return key == Qt::Key_Return || key == Qt::Key_Enter; }

} // namespace

ReferenceList::ReferenceList(GUI& gui, UndoStack& undo, Controls controls, Traits traits,
                             std::vector<Slot> used)
    : gui_(gui), undo_(undo), controls_(std::move(controls)), traits_(traits), slots_(std::move(used)),
      history_(List(), undo) {
    connect(controls_.edit, &QPushButton::clicked, this, &ReferenceList::Edit_Click);
    connect(&List(), &ListView::ItemClick, this, &ReferenceList::ItemClick);
    connect(&List(), &ListView::MouseUp, this, [this] { Handle(List(), "MouseUp", [this] { MouseUp(); }); });
    connect(&List(), &ListView::Rearranged, this, &ReferenceList::Follow);
    connect(&List(), &ListView::ItemDoubleClick, this, &ReferenceList::EditSelectedItem);
    connect(&List(), &ListView::KeyPress, this, &ReferenceList::KeyPress);
    connect(&List(), &ListView::MenuRequested, this, &ReferenceList::ShowMenu);
    connect(&history_, &RowHistory::Restored, this, [this] {
        // They show what the row was.
        HideEditors();
        open_ = QPersistentModelIndex();
        gui_.BringIntoSight(List());
        MarkChanged();
    });
    List().installEventFilter(this);
    for (const Slot slot : slots_) {
        connect(gui_.NodePicker(slot), &ComboBox::Click, this, [this, slot] { NodeClick(slot); });
        connect(gui_.NumberPicker(slot), &ComboBox::Click, this, [this, slot] { NumberClick(slot); });
        gui_.NodePicker(slot)->installEventFilter(this);
        gui_.NumberPicker(slot)->installEventFilter(this);
    }
}

void ReferenceList::Edit_Click() {
    Handle(*controls_.edit, "Click", [this] {
        const bool editing = !Editing();
        GUI::ShowEditing(*controls_.edit, editing);
        if (editing) {
            // A button that is disabled with the focus would hand it on, maybe to where edit mode ends; and
            // one that stays in another list would not end it when the person goes on there.
            controls_.edit->setFocus(Qt::OtherFocusReason);
        }
        for (QPushButton* button : controls_.buttons) {
            button->setEnabled(!editing || button == controls_.edit);
        }
        List().setSelectionMode(editing ? QAbstractItemView::SingleSelection : traits_.browsingSelection);
        if (!editing) {
            // Not the list itself: its getting the focus ends the edit mode of the list that takes over.
            HideEditors(*controls_.edit);
            open_ = QPersistentModelIndex();
        } else {
            if (const int row = List().SelectedItem(); row >= 0) {
                ItemClick(row);
            }
            emit EditingBegan();
        }
        MarkChanged();
    });
}

void ReferenceList::EditSelectedItem() {
    const int row = List().SelectedItem();
    if (row >= 0 && Editing()) {
        ItemClick(row);
    } else if (row >= 0) {
        Edit_Click();
    }
}

std::optional<NodeKey> ReferenceList::SelectedTarget() const {
    const int row = List().SelectedItem();
    if (row < 0 || !RefersToNode(List().Row(row).typeID)) {
        return std::nullopt;
    }
    return NodeKey{List().Row(row).typeID, List().Row(row).number}.Itself();
}

std::vector<QWidget*> ReferenceList::Editors(Slot slot) const {
    std::vector<QWidget*> editors = RangeEditors();
    editors.push_back(gui_.NodePicker(slot));
    editors.push_back(gui_.NumberPicker(slot));
    return editors;
}

std::vector<QWidget*> ReferenceList::Editors() const {
    std::vector<QWidget*> editors;
    for (const Slot slot : slots_) {
        std::ranges::copy(Editors(slot), std::back_inserter(editors));
    }
    return editors;
}

void ReferenceList::HideEditors(QWidget& heir) {
    const std::vector<QWidget*> editors = Editors();
    // The window's, which it has also before it is active again after a message.
    if (std::ranges::find(editors, gui_.focusWidget()) != editors.end()) {
        heir.setFocus(Qt::OtherFocusReason);
    }
    for (QWidget* editor : editors) {
        editor->hide();
    }
}

void ReferenceList::ItemClick(int row) {
    Handle(List(), "ItemClick", [&] {
        (gui_.*traits_.resetColumns)();
        if (Editing()) {
            List().Select(row);
            try {
                OpenEditors(row);
            } catch (...) {
                // They may show another reference than the row's.
                HideEditors();
                throw;
            }
        }
    });
}

void ReferenceList::OpenEditors(int row) {
    // A further click on the row goes on with it.
    if (open_ != List().model()->index(row, 0)) {
        open_ = List().model()->index(row, 0);
        before_ = List().Row(row);
        history_.BeginRow();
    }
    const Slot slot = SlotOf(row);
    PickList& node = *gui_.NodePicker(slot);
    NumberBox& number = *gui_.NumberPicker(slot);
    const std::vector<QWidget*> own = Editors(slot);

    Place(slot, row);
    for (QWidget* editor : own) {
        editor->setVisible(editor != &number || number.ListCount() > 0);
        editor->raise();
    }
    own.front()->setFocus(Qt::OtherFocusReason);
    for (QWidget* editor : Editors()) {
        if (std::ranges::find(own, editor) == own.end()) {
            editor->hide();
        }
    }

    const QString name = List().Row(row).name;
    if (!IsNodeTypeAvailable(slot, name)) {
        RefuseNodeType(row);
        return;
    }
    FillRangeEditors(row);
    node.SetText(name);
    if (const int chosen = List().Row(row).number; chosen <= number.ListCount()) {
        number.SetText(QString::number(chosen));
    } else if (!traits_.numberlessOpens || node.SelectedData() != traits_.numberlessType) {
        RefuseNodeType(row);
    }
}

void ReferenceList::RefuseNodeType(int row) {
    Inform("Please check the \"Max Number of each Node\" Section for " + UnavailableName(row) +
           " Node in Partition Settings.");
    HideEditors();
}

QString ReferenceList::UnavailableName(int row) const { return List().Row(row).name; }

bool ReferenceList::IsNodeTypeAvailable(Slot slot, const QString& name) const {
    return std::ranges::none_of(gui_.Lists().*SetOf(slot).notAvailable, [&](const std::string& unavailable) {
        return QString::fromStdString(unavailable).toUpper() == name.toUpper();
    });
}

void ReferenceList::Place(Slot slot, int row) {
    QRect cell = List().CellRect(row, CommandNodeColumn);
    cell.translate(List().viewport()->mapTo(gui_.NodePicker(slot)->parentWidget(), QPoint(0, 0)));
    PickList& node = *gui_.NodePicker(slot);
    node.setGeometry(cell.left(), cell.top(), gui_.NodePickerWidth(slot), cell.height());
    PlaceNumber(slot);
    QRect lead = List().CellRect(row, LeadColumn);
    lead.translate(cell.topLeft() - List().CellRect(row, CommandNodeColumn).topLeft());
    PlaceRangeEditors(lead);
}

void ReferenceList::PlaceNumber(Slot slot) {
    const PickList& node = *gui_.NodePicker(slot);
    NumberBox& number = *gui_.NumberPicker(slot);
    number.setGeometry(node.x() + node.width(), node.y(), NumberPickerWidth(number), node.height());
}

void ReferenceList::Follow() {
    const auto editors = Editors();
    if (std::ranges::all_of(editors, [](const QWidget* editor) { return IsHiddenByCode(*editor); })) {
        return;
    }
    if (!Editing() || !open_.isValid() || open_.row() != List().SelectedItem()) {
        HideEditors();
        return;
    }
    const int row = open_.row();
    const QRect cells = List().CellRect(row, LeadColumn) | List().CellRect(row, CommandNodeColumn);
    if (List().viewport()->rect().contains(cells)) {
        Place(SlotOf(row), row);
    } else {
        HideEditors();
    }
}

void ReferenceList::NodeClick(Slot slot) {
    PickList& node = *gui_.NodePicker(slot);
    NumberBox& number = *gui_.NumberPicker(slot);
    Handle(node, "Click", [&] {
        const int type = node.SelectedData();
        number.SetNumbers(1, gui_.Lists().MaxNodeNumberCollection[type]);
        if (type == traits_.numberlessType) {
            number.hide();
            gui_.SetNodePickerWidth(slot, GUI::WidePicker);
            ChooseNumberless(slot);
            return;
        }
        gui_.SetNodePickerWidth(slot, GUI::NarrowPicker);
        PlaceNumber(slot);
        number.show();
        const int row = List().SelectedItem();
        if (row < 0) {
            return;
        }
        ListRow content = List().Row(row);
        content.typeID = type;
        content.number = gui_.Lists().HasNumber({type, content.number}) ? content.number : 1;
        content.shown = gui_.NodeName(type);
        content.name = node.Text();
        content.label.clear();
        const int chosen = content.number;
        List().SetRow(row, std::move(content));
        if (gui_.Lists().HasNumber({type, chosen})) {
            number.SetText(QString::number(chosen));
        } else {
            ShowNoNumber(slot, type);
        }
    });
}

void ReferenceList::WriteNumberless(int row) {
    ListRow content = List().Row(row);
    content.typeID = traits_.numberlessType;
    content.number = 1;
    content.shown = content.name = gui_.NodeName(traits_.numberlessType);
    if (traits_.kind == RowKind::Exceptions) {
        content.label.clear();
    }
    List().SetRow(row, std::move(content));
}

void ReferenceList::NumberClick(Slot slot) {
    const NumberBox& number = *gui_.NumberPicker(slot);
    Handle(number, "Click", [&] {
        const int row = List().SelectedItem();
        if (row < 0 || (traits_.numberNeedsHighlight && !List().IsSelected(row))) {
            return;
        }
        ListRow content = List().Row(row);
        content.shown = gui_.NodeName(content.typeID);
        content.number = number.Text().toInt();
        List().SetRow(row, std::move(content));
    });
}

void ReferenceList::LeaveEditors() {
    List().setFocus(Qt::OtherFocusReason);
    HideEditors();
    open_ = QPersistentModelIndex();
}

void ReferenceList::RestoreRow() {
    const RowHistory::Deed deed(history_, open_);
    if (open_.isValid()) {
        List().SetRow(open_.row(), before_);
    }
}

void ReferenceList::KeyPress(int character) {
    Handle(List(), "KeyPress", [&] {
        if (character == ListView::SelectAllCharacter) {
            List().selectAll();
        } else if (character == ListView::CopyCharacter) {
            Copy();
        } else if (character == ListView::PasteCharacter) {
            Paste();
        } else if (character == ListView::CutCharacter) {
            Cut();
        }
    });
}

void ReferenceList::Copy() const {
    if (const auto rows = List().SelectedRows(); !rows.empty()) {
        QGuiApplication::clipboard()->setText(TextOfRows(traits_.kind, List(), rows));
    }
}

void ReferenceList::Cut() {
    if (!Editing()) {
        Copy();
        TakeOut();
    }
}

void ReferenceList::Paste() {
    if (Editing()) {
        return;
    }
    auto [rows, refusal] = RowsOfText(traits_.kind, gui_, QGuiApplication::clipboard()->text());
    if (!refusal.isEmpty()) {
        Inform(refusal);
        return;
    }
    TakeIn(std::move(rows));
    MarkChanged();
}

// While a row is edited, Enter accepts it and Escape takes it back: both close its editors, not the window.
// From the list, Enter and F2 begin edit mode or open the editors again, and Escape ends it.
bool ReferenceList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QObject::eventFilter(watched, event);
    }
    const bool onList = watched == &List();
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (onList && IsEnter(key) && static_cast<QKeyEvent*>(event)->modifiers() == Qt::ControlModifier) {
        if (const auto target = SelectedTarget()) {
            emit Followed(*target);
        }
        return true;
    }
    const bool begins = IsEnter(key) || (onList && key == Qt::Key_F2);
    if (!begins && key != Qt::Key_Escape) {
        return QObject::eventFilter(watched, event);
    }
    if (onList && begins) {
        EditSelectedItem();
        return true;
    }
    if (!Editing()) {
        return QObject::eventFilter(watched, event);
    }
    if (onList) {
        Edit_Click();
    } else {
        if (key == Qt::Key_Escape) {
            RestoreRow();
        }
        LeaveEditors();
    }
    return true;
}

} // namespace KAL_AUTO_Node
