#include "bench/StockList.h"

#include "controls/ListRow.h"

#include <algorithm>

namespace KAL_AUTO_Node {

StockList::StockList(const ListView& like) {
    const int columns = like.model()->columnCount();
    tree_.setColumnCount(columns);
    tree_.setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree_.setRootIsDecorated(false);
    // As the editor's list is told, or each row would be measured anew with each change.
    tree_.setUniformRowHeights(true);
    for (int column = 0; column < columns; ++column) {
        tree_.setColumnHidden(column, like.isColumnHidden(column));
    }
    tree_.resize(like.size());
    tree_.show();
}

namespace {

QString RowKey(int number) { return QString::number(number) + KeySuffix; }

// As Add and Insert make it.
ListRow NewRow(int number) {
    const QString digits = QString::number(number);
    return {Slot::Actions, 0, 1, QStringLiteral("MSG"), QStringLiteral("MSG"), {}, digits, digits};
}

} // namespace

QTreeWidgetItem* StockList::MakeItem(const ListRow& row, int number) const {
    QStringList cells;
    for (int column = 0; column < tree_.columnCount(); ++column) {
        cells.append(CellOf(row, number, column));
    }
    auto* item = new QTreeWidgetItem(cells);
    item->setData(0, Qt::UserRole, RowKey(number));
    return item;
}

void StockList::Fill(const std::vector<ListRow>& rows) {
    tree_.clear();
    byKey_.clear();
    QList<QTreeWidgetItem*> items;
    for (const ListRow& row : rows) {
        const int number = static_cast<int>(items.size()) + 1;
        items.append(MakeItem(row, number));
        byKey_.insert(RowKey(number), items.last());
    }
    tree_.addTopLevelItems(items);
}

void StockList::Select(int row) {
    QTreeWidgetItem* item = tree_.topLevelItem(row);
    // By itself the toolkit would look at the keys that are held.
    tree_.setCurrentItem(item, 0, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    tree_.scrollToItem(item);
}

void StockList::SelectEverySecond() {
    QItemSelection selection;
    const QAbstractItemModel* rows = tree_.model();
    for (int row = 0; row < tree_.topLevelItemCount(); row += 2) {
        selection.append(QItemSelectionRange(rows->index(row, 0), rows->index(row, rows->columnCount() - 1)));
    }
    tree_.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void StockList::SelectNone() { tree_.selectionModel()->clear(); }

void StockList::Take(int row) {
    QTreeWidgetItem* item = tree_.takeTopLevelItem(row);
    byKey_.remove(item->data(0, Qt::UserRole).toString());
    delete item;
}

std::vector<int> StockList::SelectedRows() const {
    std::vector<int> rows;
    for (const QModelIndex& index : tree_.selectionModel()->selectedRows()) {
        rows.push_back(index.row());
    }
    std::ranges::sort(rows);
    return rows;
}

void StockList::Add() {
    SelectNone();
    const int last = tree_.topLevelItemCount() - 1;
    const int number = tree_.topLevelItem(last)->text(PositionColumn).toInt() + 1;
    QTreeWidgetItem* item = MakeItem(NewRow(number), number);
    tree_.addTopLevelItem(item);
    byKey_.insert(RowKey(number), item);
    Select(last + 1);
}

void StockList::InsertAtTop() {
    SelectNone();
    tree_.insertTopLevelItem(0, MakeItem(NewRow(1), 1));
    Renumber();
    Select(0);
}

void StockList::RemoveSelected() {
    const std::vector<int> rows = SelectedRows();
    // From the end, so that the rows before stay where they are.
    std::for_each(rows.rbegin(), rows.rend(), [this](int row) { Take(row); });
    Renumber();
    Select(0);
}

void StockList::Move(int distance) {
    const std::vector<int> rows = SelectedRows();
    QTreeWidgetItem* item = tree_.topLevelItem(rows.front());
    QTreeWidgetItem* other = tree_.topLevelItem(rows.front() + distance);
    for (int column = LeadColumn; column <= DTMFRangeHighColumn; ++column) {
        const QString text = item->text(column);
        item->setText(column, other->text(column));
        other->setText(column, text);
    }
    Select(rows.front() + distance);
}

void StockList::SelectAll() { tree_.selectAll(); }

void StockList::Renumber() {
    for (int row = 0; row < tree_.topLevelItemCount(); ++row) {
        byKey_.remove(tree_.topLevelItem(row)->data(0, Qt::UserRole).toString());
    }
    for (int row = 0; row < tree_.topLevelItemCount(); ++row) {
        QTreeWidgetItem* item = tree_.topLevelItem(row);
        const QString key = RowKey(row + 1);
        item->setText(PositionColumn, QString::number(row + 1));
        item->setData(0, Qt::UserRole, key);
        byKey_.insert(key, item);
    }
}

} // namespace KAL_AUTO_Node
