#include "controls/ListView.h"

#include "controls/FocusReason.h"
#include "controls/ListRows.h"
#include "controls/Twips.h"
#include "platform/RuntimeError.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QStyledItemDelegate>

#include <algorithm>
#include <cmath>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Rows as high as the boxes that float over them while they are edited.
class RowDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        QStyleOptionComboBox box;
        box.initFrom(option.widget);
        box.frame = true;
        return option.widget->style()
            ->sizeFromContents(QStyle::CT_ComboBox, &box, {size.width(), option.fontMetrics.height() + 2},
                               option.widget)
            .expandedTo(size);
    }
};

} // namespace

ListView::ListView(QWidget* parent) : QTreeView(parent), rows_(new ListRows(this)) {
    setModel(rows_);
    setItemDelegate(new RowDelegate(this));
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    header()->setSectionsMovable(false);
    header()->viewport()->installEventFilter(this);

    connect(this, &QAbstractItemView::clicked, this,
            [this](const QModelIndex& index) { emit ItemClick(index.row()); });
    connect(verticalScrollBar(), &QAbstractSlider::actionTriggered, this, [this] {
        // A notch of the wheel at the end acts, too, but scrolls nothing.
        if (verticalScrollBar()->sliderPosition() != verticalScrollBar()->value()) {
            Send(WindowMessage::VScroll);
        }
    });
    connect(header(), &QHeaderView::sectionResized, this, &ListView::Rearranged);
    for (const QScrollBar* bar : {verticalScrollBar(), horizontalScrollBar()}) {
        connect(bar, &QScrollBar::valueChanged, this, &ListView::Rearranged);
        connect(bar, &QScrollBar::valueChanged, this, &ListView::DragOn);
    }
    connect(rows_, &QAbstractItemModel::rowsInserted, this, &ListView::Rearranged);
    connect(rows_, &QAbstractItemModel::rowsRemoved, this, &ListView::Rearranged);
    connect(rows_, &QAbstractItemModel::modelReset, this, &ListView::Rearranged);
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this, &ListView::Rearranged);
}

void ListView::SetColumns(std::span<const ListColumn> columns) {
    rows_->SetColumns(columns);
    columns_.assign(columns.begin(), columns.end());
    FitColumns();
}

void ListView::FitColumns() {
    constexpr int narrowest = 600; // twips
    header()->setMinimumSectionSize(Pixels(narrowest, *this));
    int lastVisible = 0;
    for (int column = 0; column < static_cast<int>(columns_.size()); ++column) {
        const int width = Pixels(columns_[static_cast<std::size_t>(column)].width, *this);
        setColumnHidden(column, width == 0);
        if (width > 0) {
            header()->resizeSection(column, width);
            header()->setSectionResizeMode(column, QHeaderView::Interactive);
            lastVisible = column;
        }
    }
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(lastVisible, QHeaderView::Stretch);
}

int ListView::Count() const { return rows_->Count(); }

const ListRow& ListView::Row(int row) const { return rows_->At(row); }

int ListView::RowOfKey(const QString& key) const { return rows_->RowOfKey(key); }

QString ListView::Key(int row) const { return rows_->Key(row); }

QString ListView::Cell(int row, int column) const { return rows_->Cell(row, column); }

const std::vector<ListRow>& ListView::Rows() const { return rows_->All(); }

template <class Deed>
void ListView::Change(Deed&& deed) {
    emit Changing();
    RowChange change = deed();
    emit Changed(change);
}

void ListView::SetRow(int row, ListRow content) {
    if (Row(row) != content) {
        Change([&] { return rows_->Set(row, std::move(content)); });
    }
}

void ListView::Swap(int row, int other) {
    Change([&] { return rows_->Swap(row, other); });
}

void ListView::Move(std::span<const int> rows, int place) {
    Change([&] { return rows_->Move(rows, place); });
    const auto above = std::ranges::lower_bound(rows, place) - rows.begin();
    Select(place - static_cast<int>(above), static_cast<int>(rows.size()));
}

void ListView::Insert(int row, std::vector<ListRow> rows) {
    Change([&] { return rows_->Insert(row, std::move(rows)); });
}

void ListView::SetRows(std::vector<ListRow> rows, const std::vector<int>& numbers) {
    Change([&] { return rows_->Replace(std::move(rows), numbers); });
    if (const auto set = static_cast<std::size_t>(Count()); set < numbers.size()) {
        throw RuntimeError(ErrorNumber::DuplicateRowKey, "The key \"" + std::to_string(numbers[set]) +
                                                             KeySuffix + "\" is not unique in the list");
    }
}

RowChange ListView::TakeBack(RowChange change) {
    emit Changing();
    return rows_->TakeBack(std::move(change));
}

void ListView::Remove(std::span<const int> rows) {
    if (rows.empty() || rows.back() - rows.front() == static_cast<int>(rows.size()) - 1) {
        Change([&] { return rows_->Remove(rows); });
        return;
    }
    // The selection would be split range by range; it is made anew instead.
    const auto removedBefore = [rows](int row) {
        return static_cast<int>(std::ranges::lower_bound(rows, row) - rows.begin());
    };
    const auto isRemoved = [rows](int row) { return std::ranges::binary_search(rows, row); };
    std::vector<int> selected = SelectedRows();
    std::erase_if(selected, isRemoved);
    std::ranges::for_each(selected, [&](int& row) { row -= removedBefore(row); });
    const int item = SelectedItem();
    const int itemAfter = item - removedBefore(item) - (isRemoved(item) ? 1 : 0);
    Change([&] {
        // The view looks at all of it again when its rows have changed.
        const QSignalBlocker silent(selectionModel());
        selectionModel()->clear();
        RowChange change = rows_->Remove(rows);
        QItemSelection again;
        for (const int row : selected) {
            again.append({rows_->index(row, 0), rows_->index(row, rows_->columnCount() - 1)});
        }
        selectionModel()->select(again, QItemSelectionModel::ClearAndSelect);
        if (item >= 0 && Count() > 0) {
            selectionModel()->setCurrentIndex(VisibleCell(std::max(0, itemAfter)),
                                              QItemSelectionModel::NoUpdate);
        }
        return change;
    });
    viewport()->update();
    emit Rearranged();
}

int ListView::SelectedItem() const { return currentIndex().row(); }

std::vector<int> ListView::SelectedRows() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.push_back(row);
        }
    }
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

bool ListView::IsSelected(int row) const { return selectionModel()->isRowSelected(row); }

QModelIndex ListView::VisibleCell(int row) const {
    static_cast<void>(rows_->At(row));
    return rows_->index(row, isColumnHidden(0) ? 1 : 0);
}

void ListView::Select(int first, int count) {
    const QModelIndex item = VisibleCell(first);
    const QItemSelection rows(rows_->index(first, 0),
                              rows_->index(first + count - 1, rows_->columnCount() - 1));
    selectionModel()->setCurrentIndex(item, QItemSelectionModel::NoUpdate);
    selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect);
    scrollTo(item);
}

void ListView::selectAll() {
    if (Count() > 0 && selectionMode() != QAbstractItemView::SingleSelection) {
        if (SelectedItem() < 0) {
            selectionModel()->setCurrentIndex(VisibleCell(0), QItemSelectionModel::NoUpdate);
        }
        // As one range; the toolkit's own goes through the rows.
        const QItemSelection all(rows_->index(0, 0), rows_->index(Count() - 1, rows_->columnCount() - 1));
        selectionModel()->select(all, QItemSelectionModel::ClearAndSelect);
    }
}

void ListView::ClearSelection() { selectionModel()->clear(); }

QRect ListView::CellRect(int row, int column) const {
    const QRect cell = visualRect(VisibleCell(row));
    return {columnViewportPosition(column), cell.top(), columnWidth(column), cell.height()};
}

ListView::WindowProcedure ListView::ExchangeWindowProcedure(WindowProcedure procedure) {
    return std::exchange(procedure_, std::move(procedure));
}

void ListView::Send(WindowMessage message) {
    if (procedure_) {
        procedure_(*this, message);
    }
}

QItemSelectionModel::SelectionFlags ListView::selectionCommand(const QModelIndex& index,
                                                               const QEvent* event) const {
    const QItemSelectionModel::SelectionFlags command = QTreeView::selectionCommand(index, event);
    if (selectionMode() != QAbstractItemView::SingleSelection ||
        (index.isValid() &&
         !command.testAnyFlags(QItemSelectionModel::Deselect | QItemSelectionModel::Toggle))) {
        return command;
    }
    return QItemSelectionModel::NoUpdate;
}

void ListView::keyPressEvent(QKeyEvent* event) {
    if (drag_ == Drag::Rows) {
        // Another key would do something to rows that are held.
        if (event->key() == Qt::Key_Escape) {
            dropAt_ = -1;
            EndDrag();
        }
        return;
    }
    for (const auto& [sequence, character] : {std::pair{QKeySequence::SelectAll, SelectAllCharacter},
                                              {QKeySequence::Copy, CopyCharacter},
                                              {QKeySequence::Paste, PasteCharacter},
                                              {QKeySequence::Cut, CutCharacter}}) {
        if (event->matches(sequence)) {
            emit KeyPress(character);
            event->accept();
            return;
        }
    }
    // Elsewhere this is the key of keyboards without one for menus; the toolkit knows only that one on X11.
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        const QPoint middle = viewport()->rect().center();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, middle, viewport()->mapToGlobal(middle));
        contextMenuEvent(&menu);
        return;
    }
    emit KeyDown(event->key());
    const int row = SelectedItem();
    const int position = verticalScrollBar()->value();
    QTreeView::keyPressEvent(event);
    if (verticalScrollBar()->value() != position) {
        Send(WindowMessage::VScroll);
    }
    // Who is at the first row, which nobody has selected yet, and goes to the first means it.
    const bool stays = SelectedItem() >= 0 && SelectedItem() == row && !IsSelected(row);
    const bool selects = stays && event->modifiers() == Qt::NoModifier &&
                         (event->key() == Qt::Key_Home || event->key() == Qt::Key_End);
    if (selects) {
        Select(row);
    }
    if (SelectedItem() >= 0 && (SelectedItem() != row || selects)) {
        emit ItemClick(SelectedItem());
    }
}

void ListView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    // The tree view's own would tell of cells.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    QAbstractItemView::currentChanged(current, previous);
    viewport()->update();
    if (QAccessible::isActive() && current.isValid() && hasFocus()) {
        QAccessibleEvent event(this, QAccessible::Focus);
        event.setChild(current.row());
        QAccessible::updateAccessibility(&event);
    }
}

void ListView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    QAbstractItemView::selectionChanged(selected, deselected);
    if (QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::SelectionWithin);
        QAccessible::updateAccessibility(&event);
    }
}

void ListView::contextMenuEvent(QContextMenuEvent* event) {
    if (const int row = indexAt(event->pos()).row();
        event->reason() == QContextMenuEvent::Mouse && row >= 0) {
        emit ItemClick(row);
    }
    // A key asks for the menu of the selected item.
    const bool pointed = event->reason() == QContextMenuEvent::Mouse || SelectedItem() < 0;
    const QRect row = pointed ? QRect() : visualRect(VisibleCell(SelectedItem())) & viewport()->rect();
    emit MenuRequested(pointed ? event->globalPos() : viewport()->mapToGlobal(row.bottomLeft()));
}

void ListView::focusInEvent(QFocusEvent* event) {
    const bool none = SelectedItem() < 0;
    QTreeView::focusInEvent(event);
    // The toolkit makes the first row the current one, which is for a person to do who goes there.
    if (none && (!isActiveWindow() || !MovesFocus(*event))) {
        selectionModel()->clearCurrentIndex();
    }
}

void ListView::changeEvent(QEvent* event) {
    QTreeView::changeEvent(event);
    if (event->type() == QEvent::FontChange && !columns_.empty()) {
        FitColumns();
    }
}

void ListView::resizeEvent(QResizeEvent* event) {
    QTreeView::resizeEvent(event);
    emit Rearranged();
}

bool ListView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == header()->viewport() && event->type() == QEvent::MouseButtonPress) {
        Send(WindowMessage::ParentNotify);
    }
    return QTreeView::eventFilter(watched, event);
}

void ListView::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                       const QModelIndex& index) const {
    QStyleOptionViewItem row = option;
    if (!hasFocus()) {
        // Keys do not reach these rows.
        constexpr float strength = 0.3F;
        const QColor base = palette().color(QPalette::Base);
        QColor marked = palette().color(QPalette::Highlight);
        marked = QColor::fromRgbF(std::lerp(base.redF(), marked.redF(), strength),
                                  std::lerp(base.greenF(), marked.greenF(), strength),
                                  std::lerp(base.blueF(), marked.blueF(), strength));
        row.palette.setColor(QPalette::Highlight, marked);
        row.palette.setColor(QPalette::HighlightedText, palette().color(QPalette::Text));
    }
    QTreeView::drawRow(painter, row, index);
    painter->save();
    painter->setPen(palette().color(QPalette::Midlight));
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    for (int column = 0; column < header()->count(); ++column) {
        if (!isColumnHidden(column)) {
            const int right = columnViewportPosition(column) + columnWidth(column) - 1;
            painter->drawLine(right, option.rect.top(), right, option.rect.bottom());
        }
    }
    painter->restore();
}

} // namespace KAL_AUTO_Node
