#include "controls/LabelledPopup.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

// Of the entries; the labels begin behind them.
int EntryWidth(const QComboBox& box) {
    const QString longest = box.itemText(box.count() - 1);
    return box.fontMetrics().horizontalAdvance(longest + QStringLiteral("    "));
}

} // namespace

LabelledPopup::LabelledPopup(QComboBox& box, LabelOf labelOf)
    : QStyledItemDelegate(&box), box_(box), labelOf_(std::move(labelOf)) {
    box.setItemDelegate(this);
    box.view()->installEventFilter(this);
}

bool LabelledPopup::eventFilter(QObject* watched, QEvent* event) {
    if (watched == box_.view()) {
        if (event->type() == QEvent::Show) {
            labels_.clear();
            MakeRoom();
        }
        return false;
    }
    return QStyledItemDelegate::eventFilter(watched, event);
}

void LabelledPopup::MakeRoom() const {
    constexpr int labelCharacters = 28;
    QWidget* popup = box_.view()->window();
    const int wanted = EntryWidth(box_) + labelCharacters * box_.fontMetrics().averageCharWidth();
    if (popup->isWindow() && popup != box_.window()) {
        popup->setMinimumWidth(std::max(wanted, box_.width()));
    }
}

QString LabelledPopup::Label(const QModelIndex& index) const {
    const QVariant data = index.data(Qt::UserRole);
    const int number = data.isValid() ? data.toInt() : index.data(Qt::DisplayRole).toInt();
    if (const auto known = labels_.constFind(number); known != labels_.constEnd()) {
        return *known;
    }
    QString label;
    try {
        label = labelOf_(number);
    } catch (...) {
        // The entry can be chosen all the same, and painting is no place to tell.
    }
    return *labels_.insert(number, label.simplified());
}

void LabelledPopup::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    const QString label = Label(index);
    if (label.isEmpty()) {
        return;
    }
    const bool mirrored = option.direction == Qt::RightToLeft;
    const int entry = EntryWidth(box_);
    const QRect room =
        mirrored ? option.rect.adjusted(4, 0, -entry, 0) : option.rect.adjusted(entry, 0, -4, 0);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->setFont(option.font);
    const Qt::Alignment place = Qt::AlignVCenter | (mirrored ? Qt::AlignRight : Qt::AlignLeft);
    painter->drawText(room, static_cast<int>(place) | Qt::TextSingleLine,
                      option.fontMetrics.elidedText(label, Qt::ElideRight, room.width()));
    painter->restore();
}

int ListPopupStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                              QStyleHintReturn* data) const {
    return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
}

} // namespace KAL_AUTO_Node
