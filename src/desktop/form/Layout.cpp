// How the editor window is laid out, and how it fits the screen.

#include "controls/Making.h"
#include "controls/Twips.h"
#include "controls/WindowPlace.h"
#include "form/GUI.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

// A list with its buttons in a column beside it.
void LayOutList(QGroupBox* frame, ListView* list, std::initializer_list<QPushButton*> buttons) {
    auto* row = new QHBoxLayout(frame);
    row->addWidget(list, 1);
    auto* column = new QVBoxLayout;
    for (QPushButton* button : buttons) {
        column->addWidget(button);
    }
    column->addStretch(1);
    row->addLayout(column);
}

// What a window may take of the screen besides its frame.
QSize RoomOnScreen(const QWidget& window) {
    constexpr int border = 8;
    const int title = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window);
    return window.screen()->availableSize() - QSize(2 * border, title + 2 * border);
}

} // namespace

void GUI::LayOut() {
    auto* selector = new QHBoxLayout;
    for (QWidget* control : {static_cast<QWidget*>(cmdFirst), static_cast<QWidget*>(cmdPrevious),
                             static_cast<QWidget*>(cmbNode), static_cast<QWidget*>(cmdNext),
                             static_cast<QWidget*>(cmdLast), static_cast<QWidget*>(lblRecordPosition)}) {
        selector->addWidget(control);
    }
    selector->addStretch(1);

    auto* values = new QGridLayout;
    values->addWidget(Caption(Frame1, "lblLabel", "Label:", txtDescription), 0, 0);
    values->addWidget(txtDescription, 0, 1, 1, 6);
    values->addWidget(Caption(Frame1, "lblNumDigits", "Number of Digits:", cmbNumDigits), 1, 0);
    values->addWidget(cmbNumDigits, 1, 1);
    values->addWidget(Caption(Frame1, "lblTermDigit", "Terminating Digit:", cmbTermDigit), 1, 2);
    values->addWidget(cmbTermDigit, 1, 3);
    values->addWidget(Caption(Frame1, "lblRetryLimit", "Retry Limit:", cmbRetryLimit), 1, 4);
    values->addWidget(cmbRetryLimit, 1, 5);
    values->addWidget(Caption(Frame1, "lblSelTimeOut", "Selection Time Out(sec):", cmbSelTimeOut), 2, 0);
    values->addWidget(cmbSelTimeOut, 2, 1);
    values->addWidget(Caption(Frame1, "lblDigitTimeOut", "Digit Time Out(sec):", cmbDigitTimeOut), 2, 2);
    values->addWidget(cmbDigitTimeOut, 2, 3);
    values->setColumnStretch(6, 1);
    for (QComboBox* box : std::initializer_list<QComboBox*>{cmbNumDigits, cmbTermDigit, cmbRetryLimit,
                                                            cmbSelTimeOut, cmbDigitTimeOut}) {
        box->setMinimumContentsLength(8);
    }

    LayOutList(fraPrompts, LVPrompts,
               {cmdPromptsAdd, cmdPromptsInsert, cmdPromptsRemove, cmdPromptsEdit, cmdPromptsUp,
                cmdPromptsDown, cmdQuickPrompts});
    LayOutList(fraActions, LVActions,
               {cmdActionsAdd, cmdActionsInsert, cmdActionsRemove, cmdActionsEdit, cmdActionsUp,
                cmdActionsDown, cmdQuickActions});
    LayOutList(fraExceptions, LVExceptions, {cmdExceptionsEdit, cmdExceptionsDefault});

    auto* lists = new QGridLayout;
    lists->addWidget(fraPrompts, 0, 0);
    lists->addWidget(fraExceptions, 1, 0);
    lists->addWidget(fraActions, 0, 1, 2, 1);
    lists->setRowStretch(0, 1);

    auto* upper = new QVBoxLayout(Frame1);
    upper->setContentsMargins(0, 0, 0, 0);
    upper->addLayout(selector);
    upper->addLayout(values);
    upper->addLayout(lists, 1);

    auto* buttons = new QHBoxLayout;
    // Beside the buttons, so that nothing moves when they come and go; in small fonts the bar is the higher.
    buttons->addStrut(findBar_->sizeHint().height());
    buttons->addWidget(findBar_);
    buttons->addWidget(StatusBar1, 1);
    for (QPushButton* button : {cmdOK, cmdCancel, cmdApply}) {
        buttons->addWidget(button);
    }
    cmdOK->setDefault(true);

    // On a screen that is too small for all, what is left over can be scrolled to; the buttons stay.
    upper_->setFrameShape(QFrame::NoFrame);
    upper_->setWidgetResizable(true);
    upper_->setFocusPolicy(Qt::NoFocus);
    upper_->setWidget(Frame1);

    auto* window = new QVBoxLayout(this);
    window->addWidget(upper_, 1);
    window->addLayout(buttons);
    FitScreen();
    // The toolkit centres a dialog a little too high, before it knows the frame; the title must stay in
    // sight.
    constexpr int tooHigh = 40;
    const QSize room = RoomOnScreen(*this);
    resize(QSize(1040, 700).boundedTo({room.width(), room.height() - 2 * tooHigh}).expandedTo(minimumSize()));
    RestorePlace(*this);
}

void GUI::FitScreen() {
    for (std::size_t i = 0; i < editors_.size(); ++i) {
        SetNodePickerWidth(static_cast<Slot>(i), editors_[i].nodeWidth);
    }
    const int rowHeight = std::max(LVExceptions->sizeHintForRow(0), cmbNode->sizeHint().height());
    LVExceptions->setFixedHeight(LVExceptions->header()->sizeHint().height() +
                                 static_cast<int>(Branches.size()) * rowHeight +
                                 2 * LVExceptions->frameWidth());
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
    upper_->setMinimumSize(bar * 3, bar * 3);
    const QSize room = RoomOnScreen(*this);
    const QSize beside = layout()->totalMinimumSize() - upper_->minimumSize();
    // In which every column has its given width.
    const int listWidth = Pixels(1600 * 3, *LVPrompts) + 24;
    for (ListView* list : {LVPrompts, LVActions, LVExceptions}) {
        list->setMinimumWidth(listWidth);
    }
    // The layouts learn of a changed size only when events are handled.
    const auto content = [this] {
        Frame1->layout()->invalidate();
        Frame1->layout()->activate();
        return Frame1->minimumSizeHint();
    };
    // The label columns give what a narrow screen lacks.
    const int lacking = content().width() + beside.width() - room.width();
    const int given = std::clamp((lacking + 1) / 2, 0, Pixels(1600 - 900, *LVPrompts));
    for (ListView* list : {LVPrompts, LVActions, LVExceptions}) {
        list->setMinimumWidth(listWidth - given);
    }
    setMinimumSize((content() + beside).boundedTo(room));
}

void GUI::BringIntoSight(const ListView& list) const {
    QRect wanted(list.mapTo(Frame1, QPoint(0, 0)), list.size());
    if (const int room = upper_->viewport()->height(); wanted.height() > room) {
        wanted.setHeight(room);
        if (const int row = list.SelectedItem(); row >= 0) {
            wanted = list.CellRect(row, LeadColumn).translated(list.viewport()->mapTo(Frame1, QPoint(0, 0)));
        }
    }
    // A column further right is of less use than the first.
    upper_->ensureVisible(wanted.left(), wanted.center().y(), 0, wanted.height() / 2 + 1);
}

void GUI::ShowWhole(QLineEdit& box) const {
    const int frameAndMargins = box.hasFrame() ? 10 : 0;
    QFont digits = font();
    const int needed = QFontMetrics(digits).horizontalAdvance(box.text());
    const int room = box.width() - frameAndMargins;
    if (needed > room && room > 0) {
        const qreal shown = static_cast<qreal>(room) / needed;
        if (digits.pixelSize() > 0) {
            digits.setPixelSize(std::max(1, static_cast<int>(digits.pixelSize() * shown)));
        } else {
            digits.setPointSizeF(digits.pointSizeF() * shown);
        }
    }
    box.setFont(digits);
}

void GUI::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if ((event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) && upper_ != nullptr) {
        FitScreen();
    }
}

void GUI::showEvent(QShowEvent* event) {
    FitScreen();
    QDialog::showEvent(event);
}

} // namespace KAL_AUTO_Node
