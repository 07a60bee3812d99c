#pragma once

#include <QStringList>
#include <QTreeView>

#include <functional>

namespace KAL_AUTO_Node {

// A list to read and choose a row from, in columns; rows are made into texts when they come to be seen.
class RowTable : public QTreeView {
  public:
    using Cell = std::function<QString(int row, int column)>;

    RowTable(QWidget* parent, const char* name, const QString& spokenName, const QStringList& headings);

    // Shows other rows, of which none is chosen.
    void Show(int rows, Cell cell);
    // To what is to be seen; the last column takes the rest.
    void FitColumns();

    [[nodiscard]] int Count() const;
    // -1 where none is.
    [[nodiscard]] int Chosen() const;
    void Choose(int row);

    // Enter or a double click on a row.
    std::function<void(int row)> Activated = [](int) {};
    // Another row is chosen, or none.
    std::function<void(int row)> Changed = [](int) {};

  protected:
    // Some styles take a single click for activating, which is too easily done.
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    class Rows;

    Rows* rows_;
};

} // namespace KAL_AUTO_Node
