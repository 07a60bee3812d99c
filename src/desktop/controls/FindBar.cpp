#include "controls/FindBar.h"

#include "controls/ArrowIcon.h"
#include "controls/ListView.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QStyle>

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

QToolButton* Button(QWidget* parent, const char* name, const QIcon& icon, const char* hint) {
    auto* button = new QToolButton(parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setIcon(icon);
    button->setAutoRaise(true);
    button->setToolTip(QString::fromLatin1(hint));
    button->setAccessibleName(button->toolTip());
    return button;
}

bool Shows(const ListView& list, int row, const QString& text) {
    for (int column = 0; column < list.header()->count(); ++column) {
        if (!list.isColumnHidden(column) && list.Cell(row, column).contains(text, Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}

} // namespace

FindBar::FindBar(QWidget* parent)
    : QWidget(parent), caption_(new QLabel(this)), text_(new QLineEdit(this)),
      previous_(
          Button(this, "cmdFindPrevious", ArrowIcon(Arrow::Previous), "Previous row found (Shift+Enter)")),
      next_(Button(this, "cmdFindNext", ArrowIcon(Arrow::Next), "Next row found (Enter)")),
      found_(new QLabel(this)) {
    setObjectName(QStringLiteral("FindBar"));
    // As high as what stands beside it.
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored);
    text_->setObjectName(QStringLiteral("txtFind"));
    caption_->setBuddy(text_);
    auto* close = Button(this, "cmdFindClose", style()->standardIcon(QStyle::SP_TitleBarCloseButton),
                         "Close the search (Escape)");
    // Wide enough for what it tells as a rule, so that nothing moves while a person types.
    found_->setMinimumWidth(found_->fontMetrics().horizontalAdvance(QStringLiteral("not found 00")));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    for (QWidget* control :
         std::initializer_list<QWidget*>{caption_, text_, previous_, next_, found_, close}) {
        row->addWidget(control);
    }
    connect(text_, &QLineEdit::textChanged, this, [this] { Find(std::max(0, list_->SelectedItem()), 1); });
    connect(previous_, &QToolButton::clicked, this, &FindBar::FindPrevious);
    connect(next_, &QToolButton::clicked, this, &FindBar::FindNext);
    connect(close, &QToolButton::clicked, this, &FindBar::Close);
    hide();
}

void FindBar::Open(ListView& list) {
    list_ = &list;
    disconnect(changing_);
    // What was counted may not be there any more, as in another node.
    changing_ = connect(list_, &ListView::Changing, this, [this] { Tell({}); });
    caption_->setText("Find in " + list.accessibleName() + ':');
    text_->setAccessibleName("Find in " + list.accessibleName());
    show();
    text_->setFocus(Qt::ShortcutFocusReason);
    text_->selectAll();
    Find(std::max(0, list.SelectedItem()), 1);
}

void FindBar::Close() {
    if (isAncestorOf(QApplication::focusWidget())) {
        list_->setFocus(Qt::OtherFocusReason);
    }
    hide();
}

void FindBar::FindNext() { Find(list_->SelectedItem() + 1, 1); }

void FindBar::FindPrevious() { Find(std::max(0, list_->SelectedItem()) - 1, -1); }

void FindBar::Find(int from, int step) {
    const QString text = text_->text();
    std::vector<int> rows;
    for (int row = 0; !text.isEmpty() && row < list_->Count(); ++row) {
        if (Shows(*list_, row, text)) {
            rows.push_back(row);
        }
    }
    previous_->setEnabled(!rows.empty());
    next_->setEnabled(!rows.empty());
    QString told = text.isEmpty() ? QString() : QStringLiteral("not found");
    if (!rows.empty()) {
        auto found = std::ranges::lower_bound(rows, from);
        if (step < 0) {
            found = std::ranges::upper_bound(rows, from);
            found = found == rows.begin() ? rows.end() - 1 : found - 1;
        } else if (found == rows.end()) {
            found = rows.begin();
        }
        list_->Select(*found);
        emit Found(*list_);
        told = QString::number(found - rows.begin() + 1) + " of " + QString::number(rows.size());
    }
    Tell(told);
}

void FindBar::Tell(const QString& found) {
    found_->setText(found);
    // The focus stays in the text, where it is heard.
    text_->setAccessibleDescription(found);
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QWidget::keyPressEvent(event);
    } else if (auto* button = qobject_cast<QToolButton*>(focusWidget())) {
        button->click();
    } else {
        event->modifiers().testFlag(Qt::ShiftModifier) ? FindPrevious() : FindNext();
    }
}

} // namespace KAL_AUTO_Node
