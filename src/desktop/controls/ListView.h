#pragma once

#include "controls/ListRow.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QTreeView>

#include <functional>
#include <span>
#include <vector>

namespace KAL_AUTO_Node {

class ListRows;

struct ListColumn {
    const char* caption;
    int width; // twips; 0 hides the column
};

// Messages that a list view's own window procedure sees before the list view acts on them.
enum class WindowMessage {
    VScroll = 0x0115,      // the person scrolled vertically
    ParentNotify = 0x0210, // the person pressed on the column headers
};

// A report list: rows with a key each, their number and a suffix, and with cells by column, a selected item
// (the current row) beside the selected rows. Rows and columns count from 0, numbers from 1. A row index out
// of range raises SubscriptOutOfRange, an unknown key UnknownRow. Whatever adds, moves or removes rows gives
// all of them their places as numbers.
class ListView : public QTreeView {
    Q_OBJECT

  public:
    using WindowProcedure = std::function<long(ListView&, WindowMessage)>;

    // What Ctrl+A, Ctrl+C, Ctrl+V and Ctrl+X type.
    static constexpr int SelectAllCharacter = 1;
    static constexpr int CopyCharacter = 3;
    static constexpr int PasteCharacter = 22;
    static constexpr int CutCharacter = 24;

    explicit ListView(QWidget* parent = nullptr);

    // Gives the list its columns and their widths, which follow the font; rows and cells stay as they are.
    // The last visible column takes the room that is left over.
    void SetColumns(std::span<const ListColumn> columns);

    [[nodiscard]] int Count() const;
    [[nodiscard]] const ListRow& Row(int row) const;
    [[nodiscard]] QString Key(int row) const;
    [[nodiscard]] int RowOfKey(const QString& key) const;
    [[nodiscard]] QString Cell(int row, int column) const;
    [[nodiscard]] const std::vector<ListRow>& Rows() const;

    void SetRow(int row, ListRow content);
    // Exchanges what two rows hold.
    void Swap(int row, int other);
    // Brings rows given in ascending order together before the one that is at a place, or behind the last;
    // they are those that are selected then.
    void Move(std::span<const int> rows, int place);
    void Insert(int row, std::vector<ListRow> rows);
    // Takes out rows given in ascending order. Those left stay selected; where the selected item goes, the
    // row before it becomes it.
    void Remove(std::span<const int> rows);
    // Other rows instead, none of them selected, which may have numbers of their own. Raises DuplicateRowKey
    // where two have the same; the rows before the second one stand then.
    void SetRows(std::vector<ListRow> rows, const std::vector<int>& numbers = {});

    // Makes the rows what they were before a change, the latest one, and returns how that is done again; none
    // of them stays selected where they did not stay in their places. No signal tells it but Changing.
    [[nodiscard]] RowChange TakeBack(RowChange change);

    // The current row, or -1.
    [[nodiscard]] int SelectedItem() const;
    // In ascending order.
    [[nodiscard]] std::vector<int> SelectedRows() const;

    [[nodiscard]] int GetSelectedCount() const { return static_cast<int>(SelectedRows().size()); }

    [[nodiscard]] bool IsSelected(int row) const;

    // Selects the row alone, makes it the selected item and scrolls to it.
    void Select(int row) { Select(row, 1); }

    // Selects that many rows, and no others; the first of them is the selected item.
    void Select(int first, int count);

    void EnsureVisible(int row) { scrollTo(VisibleCell(row)); }

    // The selected item stays the same; where there is none, the first row becomes it. Nothing where only one
    // row may be selected.
    void selectAll() override;
    // Leaves neither a selected row nor a selected item.
    void ClearSelection();

    // Where a cell is in the viewport, whether or not it can be seen there.
    [[nodiscard]] QRect CellRect(int row, int column) const;

    // Puts another procedure before the list view's own; returns the one that was there.
    WindowProcedure ExchangeWindowProcedure(WindowProcedure procedure);

  signals:
    // A person clicked a row, with whichever button, or moved to one with the keyboard.
    void ItemClick(int row);
    // A person double-clicked a row; comes with the release of the button, as its press takes the focus.
    void ItemDoubleClick();
    // A person released a mouse button; follows the other signals of the same click.
    void MouseUp();
    // A person pressed a key, or typed a character, while the list had the focus. KeyDown comes before the
    // list's own handling.
    void KeyDown(int key);
    void KeyPress(int character);
    // A person has dragged the selected rows before the row that is at a place, or behind the last.
    void Dragged(int place);
    // A person asks for the menu of what can be done here, at a place of the screen.
    void MenuRequested(const QPoint& place);
    // Rows are about to be added, removed or changed; and are. Who notes the change may take it.
    void Changing();
    void Changed(RowChange& change);
    // Rows or columns may stand at other places of the viewport than before, or another row is the selected
    // item.
    void Rearranged();

  protected:
    // Where one row is to be selected, a person can select another but not none.
    [[nodiscard]] QItemSelectionModel::SelectionFlags
    selectionCommand(const QModelIndex& index, const QEvent* event = nullptr) const override;
    void keyPressEvent(QKeyEvent* event) override;
    // The row of which a visible column begins with what is typed becomes the selected item.
    void keyboardSearch(const QString& text) override;
    // Where several rows can be selected, those that are can be dragged; elsewhere a drag selects.
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    // Tell assistive technology by rows; the toolkit's own count cells.
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;

  private:
    void Send(WindowMessage message);
    // Gives the columns their widths for the font.
    void FitColumns();
    // Runs a change of the rows and tells it.
    template <class Deed>
    void Change(Deed&& deed);
    // Rows are dragged to where the pointer is by now.
    void DragOn();
    void EndDrag();
    // By how many rows the list moves, again and again, while rows are dragged to where the pointer is.
    [[nodiscard]] int ScrollsBy() const;
    [[nodiscard]] bool BeginsWith(int row, const QString& text) const;
    // A cell of the row that the toolkit can mark and scroll to: it does neither with one of a hidden column.
    [[nodiscard]] QModelIndex VisibleCell(int row) const;

    ListRows* rows_;
    std::vector<ListColumn> columns_;
    WindowProcedure procedure_;
    bool doubleClicked_ = false; // the button is still down
    enum class Drag { None, Possible, Rows } drag_ = Drag::None;
    QPoint pressedAt_;
    QPoint pointer_; // in the viewport
    QBasicTimer scrolling_;
    int dropAt_ = -1; // before which row they would come; none while the pointer is elsewhere
    QString typed_;   // lately, to find a row by
    QElapsedTimer typedAt_;
};

} // namespace KAL_AUTO_Node
