#pragma once

#include "editor/ReferenceList.h"

namespace KAL_AUTO_Node {

// Where the call goes on a timeout, an invalid entry, an abort, "*" and "#": five fixed rows.
class ExceptionsList : public ReferenceList {
  public:
    ExceptionsList(GUI& gui, UndoStack& undo);

  private:
    void Default_Click();

    [[nodiscard]] Slot SlotOf(int row) const override;
    void ChooseNumberless(Slot slot) override;
    void ShowNoNumber(Slot slot, int type) override;
    void MouseUp() override;
    // Each into the row of its exception.
    void TakeIn(std::vector<ListRow> rows) override;
};

} // namespace KAL_AUTO_Node
