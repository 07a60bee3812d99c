#pragma once

#include "controls/ListView.h"

#include <QHash>
#include <QTreeWidget>

namespace KAL_AUTO_Node {

// The floor of the list operations: what a program does that keeps the same list in the toolkit's own tree
// widget. A row is an item, found by its key, and each operation does what the editor's does.
class StockList {
  public:
    explicit StockList(const ListView& like);

    void Fill(const std::vector<ListRow>& rows);
    void Select(int row);
    void SelectEverySecond();
    void SelectNone();

    void Add();
    void InsertAtTop();
    void RemoveSelected();
    // Exchanges the selected row with the one that many rows further.
    void Move(int distance);
    void SelectAll();

  private:
    void Renumber();
    [[nodiscard]] QTreeWidgetItem* MakeItem(const ListRow& row, int number) const;
    [[nodiscard]] std::vector<int> SelectedRows() const;
    void Take(int row);

    QTreeWidget tree_;
    QHash<QString, QTreeWidgetItem*> byKey_;
};

} // namespace KAL_AUTO_Node
