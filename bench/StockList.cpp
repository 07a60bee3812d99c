#include "bench/StockList.h"

#include "form/Columns.h"

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

QTreeWidgetItem* StockList::MakeItem(const ListRow& row) const {
    auto* item = new QTreeWidgetItem(row.cells);
    item->setData(0, Qt::UserRole, row.key);
    return item;
}

void StockList::Fill(const std::vector<ListRow>& rows) {
    tree_.clear();
    byKey_.clear();
    QList<QTreeWidgetItem*> items;
    for (const ListRow& row : rows) {
        items.append(MakeItem(row));
        byKey_.insert(row.key, items.last());
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

void StockList::TakeFirst() { Take(0); }

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
    const ListRow row = StockRow(tree_.topLevelItem(last)->text(PositionColumn).toInt() + 1);
    QTreeWidgetItem* item = MakeItem(row);
    tree_.addTopLevelItem(item);
    byKey_.insert(row.key, item);
    Select(last + 1);
}

void StockList::InsertAtTop() {
    SelectNone();
    const ListRow row = StockRow(1);
    QTreeWidgetItem* item = MakeItem(row);
    tree_.insertTopLevelItem(0, item);
    Renumber(0);
    Select(0);
}

void StockList::RemoveSelected() {
    const std::vector<int> rows = SelectedRows();
    // From the end, so that the rows before stay where they are.
    std::for_each(rows.rbegin(), rows.rend(), [this](int row) { Take(row); });
    Renumber(0);
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

void StockList::Renumber(int from) {
    for (int row = from; row < tree_.topLevelItemCount(); ++row) {
        byKey_.remove(tree_.topLevelItem(row)->data(0, Qt::UserRole).toString());
    }
    for (int row = from; row < tree_.topLevelItemCount(); ++row) {
        QTreeWidgetItem* item = tree_.topLevelItem(row);
        const QString key = RowKey(row);
        item->setText(PositionColumn, QString::number(row + 1));
        item->setData(0, Qt::UserRole, key);
        byKey_.insert(key, item);
    }
}

ListRow StockRow(int position) {
    const QString number = QString::number(position);
    return {RowKey(position - 1),
            {number, number + '-' + number, QStringLiteral("MSG 1"), QString(), QStringLiteral("MSG"),
             QStringLiteral("0"), QStringLiteral("1"), number, number}};
}

} // namespace KAL_AUTO_Node
