#pragma once

#include "editor/RowList.h"

namespace KAL_AUTO_Node {

// Which range of digits leads to which node.
class ActionsList : public RowList {
  public:
    ActionsList(GUI& gui, UndoStack& undo, const ComponentFactory& components);

  private:
    bool MayMakeRows() override;
    bool InsertsOtherwise(bool oneSelected) override;
    void ChooseDefaultType() override;
    [[nodiscard]] ListRow MakeRow(int position, const Reference& target) const override;
    void ChooseNumberless(Slot slot) override;
    [[nodiscard]] QString UnavailableName(int row) const override;
    [[nodiscard]] bool IsNodeTypeAvailable(Slot slot, const QString& name) const override;
    void MouseUp() override;

    [[nodiscard]] std::vector<QWidget*> RangeEditors() const override;
    void PlaceRangeEditors(const QRect& row) override;
    void FillRangeEditors(int row) override;

    // A box of the digit range and the end that it writes.
    void ConnectRangeBox(QLineEdit* box, QString ListRow::*end);
    void RangeChange(QLineEdit& box, QString ListRow::*end);
    void RangeLostFocus(QLineEdit& box, QString ListRow::*end);
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace KAL_AUTO_Node
