#pragma once

#include "controls/ListRow.h"
#include "controls/ListView.h"

#include <QAbstractTableModel>

namespace KAL_AUTO_Node {

// The rows of a list view. Each has a number, its place from 1 after every change but those of one row's
// content; what was stored may be numbered otherwise. What changes rows returns how they can become what they
// were.
class ListRows : public QAbstractTableModel {
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void SetColumns(std::span<const ListColumn> columns);

    [[nodiscard]] int Count() const { return static_cast<int>(rows_.size()); }

    [[nodiscard]] const ListRow& At(int row) const;
    [[nodiscard]] QString Cell(int row, int column) const;
    [[nodiscard]] QString Key(int row) const;
    [[nodiscard]] int RowOfKey(const QString& key) const;

    RowChange Set(int row, ListRow content);
    RowChange Swap(int row, int other);
    // Brings rows given in ascending order together before the one that is at a place, or behind the last.
    RowChange Move(std::span<const int> rows, int place);
    RowChange Insert(int row, std::vector<ListRow> rows);
    // Takes out rows given in ascending order, in one step. Over more than one run of rows the views see a
    // change of layout.
    RowChange Remove(std::span<const int> rows);
    // All rows by others, which may have numbers of their own: up to one whose number another has.
    RowChange Replace(std::vector<ListRow> rows, std::vector<int> numbers = {});

    // Makes the rows what they were before a change, the latest one.
    RowChange TakeBack(RowChange change);

    [[nodiscard]] const std::vector<ListRow>& All() const { return rows_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    void RequireColumn(int column) const;

    [[nodiscard]] int Number(int row) const {
        return numbers_.empty() ? row + 1 : numbers_[static_cast<std::size_t>(row)];
    }

    [[nodiscard]] ListRow& RowAt(int row) { return const_cast<ListRow&>(At(row)); }

    // The places become the numbers; those from a row on are told anew.
    void Renumber(int from);
    void CellsChanged(int firstRow, int lastRow, int lastColumn);
    // Takes rows out, and puts rows in where they are to stand then.
    std::vector<ListRow> Replace(const std::vector<RowRun>& outAt, const std::vector<RowRun>& inAt,
                                 std::vector<ListRow> in);

    std::vector<ListRow> rows_;
    std::vector<int> numbers_; // none where they are the places
    QList<QString> captions_;
};

} // namespace KAL_AUTO_Node
