#include "information/RowTable.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

namespace KAL_AUTO_Node {

class RowTable::Rows : public QAbstractTableModel {
  public:
    Rows(QStringList headings, QObject* parent)
        : QAbstractTableModel(parent), headings_(std::move(headings)) {}

    void Show(int count, Cell cell) {
        beginResetModel();
        count_ = count;
        cell_ = std::move(cell);
        endResetModel();
    }

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : count_;
    }

    [[nodiscard]] int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(headings_.size());
    }

    // A cell that is too narrow for its text tells it when it is pointed at.
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole || role == Qt::ToolTipRole ? cell_(index.row(), index.column())
                                                                  : QVariant();
    }

    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        return orientation == Qt::Horizontal && role == Qt::DisplayRole ? headings_[section] : QVariant();
    }

  private:
    QStringList headings_;
    int count_ = 0;
    Cell cell_;
};

RowTable::RowTable(QWidget* parent, const char* name, const QString& spokenName, const QStringList& headings)
    : QTreeView(parent), rows_(new Rows(headings, this)) {
    setObjectName(QString::fromLatin1(name));
    setAccessibleName(spokenName);
    setModel(rows_);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setEditTriggers(NoEditTriggers);
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) { Changed(current.row()); });
}

void RowTable::Show(int rows, Cell cell) {
    rows_->Show(rows, std::move(cell));
    Changed(-1);
}

void RowTable::FitColumns() {
    constexpr int most = 40; // characters
    for (int column = 0; column + 1 < rows_->columnCount({}); ++column) {
        resizeColumnToContents(column);
        setColumnWidth(column, std::min(columnWidth(column), fontMetrics().averageCharWidth() * most));
    }
}

int RowTable::Count() const { return rows_->rowCount({}); }

int RowTable::Chosen() const { return currentIndex().row(); }

void RowTable::Choose(int row) { setCurrentIndex(rows_->index(row, 0)); }

void RowTable::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QTreeView::keyPressEvent(event);
    } else if (Chosen() >= 0) {
        Activated(Chosen());
    }
}

void RowTable::mouseDoubleClickEvent(QMouseEvent* event) {
    if (const QModelIndex pointed = indexAt(event->pos());
        pointed.isValid() && event->button() == Qt::LeftButton) {
        Activated(pointed.row());
    }
}

} // namespace KAL_AUTO_Node
