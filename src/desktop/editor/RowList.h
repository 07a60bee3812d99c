#pragma once

#include "editor/ReferenceList.h"
#include "quickassign/QuickAssignDialog.h"
#include "rules/Rows.h"

namespace KAL_AUTO_Node {

// A list whose rows a person adds, inserts, removes and moves: the prompts and the actions.
class RowList : public ReferenceList {
  protected:
    struct Buttons {
        QPushButton* edit;
        QPushButton* add;
        QPushButton* insert;
        QPushButton* remove;
        QPushButton* up;
        QPushButton* down;
        QPushButton* quick;
    };

    struct RowTraits {
        Slot slot;
        QuickAssignDialog::List quickList;
        void (QuickAssignDialog::*prepareQuick)();
        const char* quickCaption;
    };

    RowList(GUI& gui, UndoStack& undo, const ComponentFactory& components, ListView* list, Buttons buttons,
            Traits traits, RowTraits rowTraits);

    void Add_Click();

    // Whether a row can be made at all; tells the person where not.
    virtual bool MayMakeRows() { return true; }

    // Instead of inserting before the selected row: what Insert does when exactly one row is selected, or
    // not. Returns whether it is done.
    virtual bool InsertsOtherwise(bool oneSelected) = 0;

    virtual void BeforeAppending() {}

    // Chooses the type of a new row in the type picker.
    virtual void ChooseDefaultType() = 0;
    [[nodiscard]] virtual ListRow MakeRow(int position, const Reference& target) const = 0;

    virtual void AfterEmptied() {}

    [[nodiscard]] Slot SlotOf(int /*row*/) const override { return rowTraits_.slot; }

    // Before the selected row, or at the end where there are none or several.
    void TakeIn(std::vector<ListRow> rows) override;

    void TakeOut() override { Remove_Click(); }

    [[nodiscard]] PickList& NodePicker() const { return *Form().NodePicker(rowTraits_.slot); }

    [[nodiscard]] NumberBox& NumberPicker() const { return *Form().NumberPicker(rowTraits_.slot); }

  private:
    void Insert_Click();
    void Remove_Click();
    // Up and Down: exchanges the selected row with the one that many rows further.
    void Move_Click(const QPushButton& button, int distance);
    // The same for all selected rows, by the mouse.
    void Dragged(int place);
    void Quick_Click();

    // The row for the default target at a position from 1.
    ListRow NewRow(int position);
    void ShowNewRow(int row);

    const ComponentFactory& components_;
    Buttons buttons_;
    RowTraits rowTraits_;
};

} // namespace KAL_AUTO_Node
