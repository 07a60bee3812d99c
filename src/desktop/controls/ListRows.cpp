#include "controls/ListRows.h"

#include "platform/NumericValue.h"
#include "platform/RuntimeError.h"

#include <algorithm>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

[[noreturn]] void RefuseRow(int row, int count) {
    throw RuntimeError(ErrorNumber::SubscriptOutOfRange,
                       "Row " + std::to_string(row) + " is not in the list of " + std::to_string(count));
}

void RequireFree(const QSet<QString>& keys, const QString& key) {
    if (keys.contains(key)) {
        throw RuntimeError(ErrorNumber::DuplicateRowKey,
                           "The key \"" + key.toStdString() + "\" is not unique in the list");
    }
}

} // namespace

void ListRows::SetColumns(std::span<const ListColumn> columns) {
    QList<QString> captions;
    for (const ListColumn& column : columns) {
        captions.append(QString::fromUtf8(column.caption));
    }
    if (captions == captions_) {
        return;
    }
    // Columns change for good only before there are rows to select.
    beginResetModel();
    captions_ = std::move(captions);
    endResetModel();
}

const ListRow& ListRows::At(int row) const {
    if (row < 0 || row >= Count()) {
        RefuseRow(row, Count());
    }
    return rows_[static_cast<std::size_t>(row)];
}

const QString& ListRows::Cell(int row, int column) const {
    RequireColumn(column);
    return At(row).cells[column];
}

int ListRows::RowOfKey(const QString& key) const {
    if (keys_.contains(key)) {
        // Keys start with the row's position almost always.
        const auto guess = NumericValue(key.toStdString()) - 1;
        if (guess >= 0 && guess < Count() && rows_[static_cast<std::size_t>(guess)].key == key) {
            return static_cast<int>(guess);
        }
        const auto found = std::ranges::find(rows_, key, &ListRow::key);
        return static_cast<int>(found - rows_.begin());
    }
    throw RuntimeError(ErrorNumber::UnknownRow, "No row has the key \"" + key.toStdString() + "\"");
}

void ListRows::RequireColumn(int column) const {
    if (column < 0 || column >= captions_.size()) {
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange,
                           "Column " + std::to_string(column) + " is not in the list");
    }
}

void ListRows::CellsChanged(int firstRow, int lastRow, int firstColumn, int lastColumn) {
    emit dataChanged(index(firstRow, firstColumn), index(lastRow, lastColumn), {Qt::DisplayRole});
}

void ListRows::SetCell(int row, int column, const QString& text) {
    RequireColumn(column);
    QString& cell = RowAt(row).cells[column];
    if (cell != text) {
        cell = text;
        CellsChanged(row, row, column, column);
    }
}

void ListRows::Insert(int row, ListRow content) {
    if (row < 0 || row > Count()) {
        RefuseRow(row, Count());
    }
    RequireFree(keys_, content.key);
    content.cells.resize(captions_.size());
    beginInsertRows({}, row, row);
    keys_.insert(content.key);
    rows_.insert(rows_.begin() + row, std::move(content));
    endInsertRows();
}

void ListRows::Append(std::vector<ListRow> rows) {
    keys_.reserve(keys_.size() + static_cast<qsizetype>(rows.size()));
    auto accepted = rows.begin();
    for (; accepted != rows.end() && !keys_.contains(accepted->key); ++accepted) {
        keys_.insert(accepted->key);
        accepted->cells.resize(captions_.size());
    }
    if (accepted != rows.begin()) {
        beginInsertRows({}, Count(), Count() + static_cast<int>(accepted - rows.begin()) - 1);
        rows_.insert(rows_.end(), std::make_move_iterator(rows.begin()), std::make_move_iterator(accepted));
        endInsertRows();
    }
    if (accepted != rows.end()) {
        RequireFree(keys_, accepted->key);
    }
}

void ListRows::Remove(std::span<const int> rows) {
    if (rows.empty()) {
        return;
    }
    for (const int row : {rows.front(), rows.back()}) {
        static_cast<void>(At(row));
    }
    const bool contiguous = rows.back() - rows.front() == static_cast<int>(rows.size()) - 1;
    // One run after the other would take a time that grows with the square of their number. Of a change of
    // layout that is none of the columns', their header keeps out.
    if (contiguous) {
        beginRemoveRows({}, rows.front(), rows.back());
    } else {
        emit layoutAboutToBeChanged({}, VerticalSortHint);
    }
    auto next = rows.begin();
    auto kept = static_cast<std::size_t>(rows.front());
    for (std::size_t row = kept; row < rows_.size(); ++row) {
        if (next != rows.end() && static_cast<std::size_t>(*next) == row) {
            keys_.remove(rows_[row].key);
            ++next;
        } else {
            rows_[kept++] = std::move(rows_[row]);
        }
    }
    rows_.resize(kept);
    if (contiguous) {
        endRemoveRows();
        return;
    }
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex& index : before) {
        const auto removed = std::ranges::lower_bound(rows, index.row());
        const bool gone = removed != rows.end() && *removed == index.row();
        after.append(
            gone ? QModelIndex()
                 : this->index(index.row() - static_cast<int>(removed - rows.begin()), index.column()));
    }
    changePersistentIndexList(before, after);
    emit layoutChanged({}, VerticalSortHint);
}

void ListRows::Renumber(int alsoColumn) {
    RequireColumn(alsoColumn);
    int from = 0;
    // Rows that have theirs stay shared with whoever holds a copy of them.
    const auto isRight = [&](int row) {
        const QString& number = Cell(row, 0);
        return At(row).key == RowKey(row) && number == QString::number(row + 1) &&
               Cell(row, alsoColumn) == number;
    };
    while (from < Count() && isRight(from)) {
        ++from;
    }
    for (int row = from; row < Count(); ++row) {
        keys_.remove(RowAt(row).key);
    }
    for (int row = from; row < Count(); ++row) {
        ListRow& content = RowAt(row);
        const QString number = QString::number(row + 1);
        content.key = RowKey(row);
        keys_.insert(content.key);
        content.cells[0] = number;
        content.cells[alsoColumn] = number;
    }
    if (from < Count()) {
        CellsChanged(from, Count() - 1, 0, alsoColumn);
    }
}

void ListRows::SwapCells(int row, int other, int firstColumn, int lastColumn) {
    RequireColumn(firstColumn);
    RequireColumn(lastColumn);
    for (int column = firstColumn; column <= lastColumn; ++column) {
        std::swap(RowAt(row).cells[column], RowAt(other).cells[column]);
    }
    CellsChanged(std::min(row, other), std::max(row, other), firstColumn, lastColumn);
}

void ListRows::SetAll(std::vector<ListRow> rows) {
    QSet<QString> keys;
    keys.reserve(static_cast<qsizetype>(rows.size()));
    for (ListRow& row : rows) {
        RequireFree(keys, row.key);
        keys.insert(row.key);
        row.cells.resize(captions_.size());
    }
    beginResetModel();
    rows_ = std::move(rows);
    keys_ = std::move(keys);
    endResetModel();
}

int ListRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : Count(); }

int ListRows::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(captions_.size());
}

QVariant ListRows::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const ListRow& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return row.cells[index.column()];
    case Qt::UserRole:
        return index.column() == 0 ? QVariant(row.key) : QVariant();
    default:
        return {};
    }
}

QVariant ListRows::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= captions_.size()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return captions_[section];
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    default:
        return {};
    }
}

} // namespace KAL_AUTO_Node
