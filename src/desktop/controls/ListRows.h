#pragma once

#include "controls/ListView.h"

#include <QAbstractTableModel>
#include <QSet>

namespace KAL_AUTO_Node {

// The rows of a list view.
class ListRows : public QAbstractTableModel {
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void SetColumns(std::span<const ListColumn> columns);

    [[nodiscard]] int Count() const { return static_cast<int>(rows_.size()); }

    [[nodiscard]] const ListRow& At(int row) const;
    [[nodiscard]] const QString& Cell(int row, int column) const;
    [[nodiscard]] int RowOfKey(const QString& key) const;

    void SetCell(int row, int column, const QString& text);
    void Insert(int row, ListRow content);
    void Append(std::vector<ListRow> rows);
    // Takes out rows given in ascending order, in one step. Over more than one run of rows the views see a
    // change of layout.
    void Remove(std::span<const int> rows);
    void Renumber(int alsoColumn);
    void SwapCells(int row, int other, int firstColumn, int lastColumn);

    [[nodiscard]] const std::vector<ListRow>& All() const { return rows_; }

    void SetAll(std::vector<ListRow> rows);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    void RequireColumn(int column) const;

    [[nodiscard]] ListRow& RowAt(int row) { return const_cast<ListRow&>(At(row)); }

    void CellsChanged(int firstRow, int lastRow, int firstColumn, int lastColumn);

    std::vector<ListRow> rows_;
    QSet<QString> keys_;
    QList<QString> captions_;
};

} // namespace KAL_AUTO_Node
