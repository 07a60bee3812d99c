#pragma once

#include "editor/Handler.h"
#include "editor/RowHistory.h"
#include "form/GUI.h"
#include "nodes/Identity.h"
#include "rules/RowText.h"

#include <QObject>
#include <QPersistentModelIndex>

#include <optional>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// One of the editor's three lists: its rows refer to nodes and can be edited in place. Here stands what the
// three have in common; where they differ, a rule or an override says so.
class ReferenceList : public QObject {
    Q_OBJECT

  public:
    struct Controls {
        ListView* list;
        QPushButton* edit;
        // As they stand beside the list; all but Edit work only while no row is edited.
        std::vector<QPushButton*> buttons;
    };

    struct Traits {
        RowKind kind;
        int numberlessType; // the type whose references carry no number
        // A row of that type is edited in place although it has no number to choose.
        bool numberlessOpens;
        // A chosen number is written only while the row is highlighted, too.
        bool numberNeedsHighlight;
        QAbstractItemView::SelectionMode browsingSelection;
        void (GUI::*resetColumns)();
    };

    [[nodiscard]] const Controls& Parts() const { return controls_; }

    [[nodiscard]] bool Editing() const { return GUI::IsEditing(*controls_.edit); }

    // Switches edit mode on, with the editors open on the selected row, or off.
    void Edit_Click();

    // The editors become invisible; edit mode stays.
    void HideEditors() { HideEditors(List()); }

  signals:
    // Edit mode is on: that of the other lists has to end.
    void EditingBegan();
    // A person wants to go on with the node that a row refers to.
    void Followed(const NodeKey& target);
    // And to know about it.
    void AskedAbout(const NodeKey& target);

  protected:
    // The slots are those of the list's editors.
    ReferenceList(GUI& gui, UndoStack& undo, Controls controls, Traits traits, std::vector<Slot> used);

    // Runs the handler of a control's event, as one deed that can be taken back.
    template <class Body>
    bool Handle(const QObject& control, const char* event, Body&& body) {
        const RowHistory::Deed deed(history_, open_);
        return KAL_AUTO_Node::Handle(control, event, std::forward<Body>(body));
    }

    [[nodiscard]] GUI& Form() const { return gui_; }

    [[nodiscard]] ListView& List() const { return *controls_.list; }

    [[nodiscard]] const Traits& TraitsOfList() const { return traits_; }

    void MarkChanged() const { gui_.cmdApply->setEnabled(true); }

    void NodeClick(Slot slot);

    // The editors of a row.
    [[nodiscard]] virtual Slot SlotOf(int row) const = 0;

    // Those that a list has besides the pickers, in their order on the row; placed, filled and hidden with
    // them.
    [[nodiscard]] virtual std::vector<QWidget*> RangeEditors() const { return {}; }

    virtual void PlaceRangeEditors(const QRect& /*row*/) {}

    virtual void FillRangeEditors(int /*row*/) {}

    // The type whose limit a person has to look at where a row cannot be edited.
    [[nodiscard]] virtual QString UnavailableName(int row) const;
    // The numberless type was chosen for the selected row.
    virtual void ChooseNumberless(Slot slot) = 0;

    // A type was chosen for the selected row that offers no number.
    virtual void ShowNoNumber(Slot /*slot*/, int /*type*/) {}

    [[nodiscard]] virtual bool IsNodeTypeAvailable(Slot slot, const QString& name) const;
    virtual void MouseUp() = 0;

    // Takes out the selected rows, where a list can do without.
    virtual void TakeOut() {}

    // Takes in rows from elsewhere; there is at least one.
    virtual void TakeIn(std::vector<ListRow> rows) = 0;

    // Writes a reference of the numberless type.
    void WriteNumberless(int row);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // The heir gets the focus where an editor had it; the toolkit would give it to the next control, which
    // may end edit mode.
    void HideEditors(QWidget& heir);
    void ItemClick(int row);
    // Opens the editors on the selected item; switches edit mode on for that.
    void EditSelectedItem();
    void OpenEditors(int row);
    void NumberClick(Slot slot);
    void RefuseNodeType(int row);
    // Puts the editors over their row.
    void Place(Slot slot, int row);
    // Puts the number picker beside the type picker.
    void PlaceNumber(Slot slot);
    // Keeps the open editors over their row when it moves, and hides them when they would not be over the
    // selected one, which is the one that they write.
    void Follow();
    void LeaveEditors();
    void RestoreRow();
    void KeyPress(int character);
    void Copy() const;
    void Cut();
    void Paste();
    void ShowMenu(const QPoint& place);
    // The node that the selected row refers to; nothing where that is none.
    [[nodiscard]] std::optional<NodeKey> SelectedTarget() const;
    [[nodiscard]] std::vector<QWidget*> Editors() const;
    [[nodiscard]] std::vector<QWidget*> Editors(Slot slot) const;

    GUI& gui_;
    UndoStack& undo_;
    Controls controls_;
    Traits traits_;
    std::vector<Slot> slots_;
    RowHistory history_;
    // The row that the editors were opened on, until it is accepted or taken back.
    QPersistentModelIndex open_;
    ListRow before_; // when they were first
};

} // namespace KAL_AUTO_Node
