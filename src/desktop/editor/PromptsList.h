#pragma once

#include "editor/RowList.h"

namespace KAL_AUTO_Node {

// What the node plays, in order. A list without prompts holds the EMPTY row.
class PromptsList : public RowList {
  public:
    PromptsList(GUI& gui, UndoStack& undo, const ComponentFactory& components);

  private:
    bool InsertsOtherwise(bool oneSelected) override;
    void BeforeAppending() override;
    void ChooseDefaultType() override;
    [[nodiscard]] ListRow MakeRow(int position, const Reference& target) const override;
    void AfterEmptied() override;
    void ChooseNumberless(Slot slot) override;
    void MouseUp() override;
};

} // namespace KAL_AUTO_Node
