// What a person does with the mouse, as dragging rows to other places of a list, and by typing.

#include "controls/ListView.h"

#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOption>

#include <algorithm>
#include <array>
#include <utility>

namespace KAL_AUTO_Node {

// Rows go nowhere else, so this is no matter between programs: nothing of the window system's dragging is
// begun, which would let the host's own events in.

void ListView::mousePressEvent(QMouseEvent* event) {
    QTreeView::mousePressEvent(event);
    pressedAt_ = event->position().toPoint();
    const QModelIndex row = indexAt(pressedAt_);
    drag_ = event->button() == Qt::LeftButton && selectionMode() == QAbstractItemView::ExtendedSelection &&
                    row.isValid() && IsSelected(row.row())
                ? Drag::Possible
                : Drag::None;
}

void ListView::mouseMoveEvent(QMouseEvent* event) {
    if (drag_ == Drag::None || !event->buttons().testFlag(Qt::LeftButton)) {
        QTreeView::mouseMoveEvent(event);
        return;
    }
    const QPoint at = event->position().toPoint();
    if (drag_ == Drag::Possible && (at - pressedAt_).manhattanLength() >= QApplication::startDragDistance()) {
        drag_ = Drag::Rows;
        viewport()->setCursor(Qt::DragMoveCursor);
    }
    pointer_ = at;
    DragOn();
}

void ListView::mouseReleaseEvent(QMouseEvent* event) {
    if (std::exchange(drag_, Drag::None) == Drag::Rows) {
        EndDrag();
        return;
    }
    QTreeView::mouseReleaseEvent(event);
    if (std::exchange(doubleClicked_, false)) {
        emit ItemDoubleClick();
    }
    emit MouseUp();
}

void ListView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeView::mouseDoubleClickEvent(event);
    doubleClicked_ = event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid();
}

void ListView::DragOn() {
    if (drag_ != Drag::Rows) {
        return;
    }
    const QRect room = viewport()->rect();
    if (ScrollsBy() == 0) {
        scrolling_.stop();
    } else if (!scrolling_.isActive()) {
        constexpr int interval = 50; // milliseconds
        scrolling_.start(interval, this);
    }
    int place = -1;
    if (room.contains(pointer_)) {
        const QModelIndex row = indexAt(pointer_);
        const bool above = row.isValid() && pointer_.y() <= visualRect(row).center().y();
        place = row.isValid() ? row.row() + (above ? 0 : 1) : Count();
    }
    viewport()->setCursor(place < 0 ? Qt::ForbiddenCursor : Qt::DragMoveCursor);
    if (std::exchange(dropAt_, place) != place) {
        viewport()->update();
    }
}

int ListView::ScrollsBy() const {
    constexpr int farther = 20; // pixels, for each row more
    const int above = autoScrollMargin() - pointer_.y();
    const int below = pointer_.y() - (viewport()->height() - autoScrollMargin());
    return above > 0 ? -1 - above / farther : below > 0 ? 1 + below / farther : 0;
}

void ListView::timerEvent(QTimerEvent* event) {
    if (event->timerId() == scrolling_.timerId()) {
        verticalScrollBar()->setValue(verticalScrollBar()->value() + ScrollsBy());
    } else {
        QTreeView::timerEvent(event);
    }
}

void ListView::EndDrag() {
    drag_ = Drag::None;
    scrolling_.stop();
    viewport()->unsetCursor();
    viewport()->update();
    if (const int place = std::exchange(dropAt_, -1); place >= 0) {
        emit Dragged(std::min(place, Count()));
    }
}

void ListView::focusOutEvent(QFocusEvent* event) {
    QTreeView::focusOutEvent(event);
    if (drag_ == Drag::Rows) {
        dropAt_ = -1;
        EndDrag();
    }
}

void ListView::paintEvent(QPaintEvent* event) {
    QTreeView::paintEvent(event);
    if (dropAt_ < 0 || Count() == 0) {
        return;
    }
    const QRect row = CellRect(std::min(dropAt_, Count() - 1), LeadColumn);
    QStyleOption line;
    line.initFrom(this);
    line.rect = {0, std::max(0, dropAt_ < Count() ? row.top() : row.bottom()), viewport()->width() - 1, 0};
    QPainter painter(viewport());
    painter.setPen(QPen(palette().color(QPalette::Text), 2));
    style()->drawPrimitive(QStyle::PE_IndicatorItemViewItemDrop, &line, &painter, this);
}

bool ListView::BeginsWith(int row, const QString& text) const {
    return std::ranges::any_of(std::array{LeadColumn, CommandNodeColumn, LabelColumn}, [&](Column column) {
        return Cell(row, column).startsWith(text, Qt::CaseInsensitive);
    });
}

void ListView::keyboardSearch(const QString& text) {
    const bool goesOn = typedAt_.isValid() && typedAt_.elapsed() < QApplication::keyboardInputInterval();
    typed_ = goesOn ? typed_ + text : text;
    typedAt_.start();
    const auto find = [&](const QString& wanted, int from) {
        for (int i = 0; i < Count(); ++i) {
            if (const int row = (from + i) % Count(); BeginsWith(row, wanted)) {
                return row;
            }
        }
        return -1;
    };
    const int item = std::max(0, SelectedItem());
    int row = typed_.trimmed().isEmpty() ? -1 : find(typed_, typed_.size() > 1 ? item : item + 1);
    // The same key again goes on to the next.
    if (row < 0 && typed_.count(typed_.front()) == typed_.size()) {
        row = find(typed_.left(1), item + 1);
    }
    if (row >= 0) {
        Select(row);
    }
}

} // namespace KAL_AUTO_Node
