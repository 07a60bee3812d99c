#include "controls/NumberBox.h"

#include "controls/Visibility.h"
#include "platform/TypedNumber.h"

#include <QAbstractListModel>
#include <QCompleter>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QStyleOptionComboBox>

#include <algorithm>
#include <string>

namespace KAL_AUTO_Node {

// Entries that are computed where they are asked for, so that a range costs nothing to offer.
class NumberModel : public QAbstractListModel {
  public:
    using QAbstractListModel::QAbstractListModel;

    void SetRange(int first, int last) {
        beginResetModel();
        first_ = first;
        last_ = last;
        endResetModel();
    }

    [[nodiscard]] int First() const { return first_; }

    [[nodiscard]] int Last() const { return last_; }

    [[nodiscard]] bool Empty() const { return last_ < first_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : std::max(0, last_ - first_ + 1);
    }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        const bool asText = role == Qt::DisplayRole || role == Qt::EditRole;
        return index.isValid() && asText ? QVariant(QString::number(first_ + index.row())) : QVariant();
    }

    // The row of a number as it is written here, or -1: the text's own value tells, so nothing is searched.
    [[nodiscard]] int RowOf(const QString& text) const {
        bool isNumber = false;
        const int value = text.toInt(&isNumber);
        const bool offered = isNumber && value >= first_ && value <= last_ && QString::number(value) == text;
        return offered ? value - first_ : -1;
    }

    [[nodiscard]] QModelIndexList match(const QModelIndex& start, int role, const QVariant& value, int hits,
                                        Qt::MatchFlags flags) const override {
        const bool exact =
            flags.testFlag(Qt::MatchExactly) || (flags & Qt::MatchTypeMask) == Qt::MatchExactly;
        if (!exact || role == Qt::UserRole) {
            return QAbstractListModel::match(start, role, value, hits, flags);
        }
        const int row = RowOf(value.toString());
        return row < 0 ? QModelIndexList() : QModelIndexList{index(row, 0)};
    }

  private:
    int first_ = 1;
    int last_ = 0;
};

NumberBox::NumberBox(QWidget* parent)
    : ComboBox(new NumberModel, parent), numbers_(static_cast<NumberModel*>(model())) {
    // Completing "2" to "20" while a person types would fight the correction. The toolkit makes a completer
    // for a line that has none, which takes longer than all else here.
    QCompleter none;
    auto* line = new QLineEdit(this);
    line->setCompleter(&none);
    setLineEdit(line);
    setCompleter(nullptr);
    setInsertPolicy(QComboBox::NoInsert);
    setInputMethodHints(Qt::ImhDigitsOnly);
    lineEdit()->setInputMethodHints(Qt::ImhDigitsOnly);
    connect(lineEdit(), &QLineEdit::textChanged, this, &NumberBox::Change);
}

void NumberBox::SetNumbers(int first, int last) {
    const QScopedValueRollback keepsEmpty(changing_, true);
    numbers_->SetRange(first, last < first ? last : std::min(last, first + (MostNumbers - 1)));
    setCurrentIndex(-1);
    lineEdit()->clear();
}

int NumberBox::NumbersWidth() const {
    constexpr int caretAndMargins = 6;
    QStyleOptionComboBox box;
    initStyleOption(&box);
    const QRect text = style()->subControlRect(QStyle::CC_ComboBox, &box, QStyle::SC_ComboBoxEditField, this);
    return fontMetrics().horizontalAdvance(QString::number(numbers_->Last())) + caretAndMargins +
           box.rect.width() - text.width();
}

void NumberBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->ignore();
    } else {
        ComboBox::keyPressEvent(event);
    }
}

void NumberBox::inputMethodEvent(QInputMethodEvent* event) {
    composing_ = !event->preeditString().isEmpty();
    ComboBox::inputMethodEvent(event);
    // What was composed over may be gone without anything having taken its place.
    if (!composing_ && !Offers(Text())) {
        Change();
    }
}

bool NumberBox::Offers(const QString& text) const { return numbers_->RowOf(text) >= 0; }

void NumberBox::Change() {
    if (changing_ || composing_) {
        return;
    }
    const bool corrects = !numbers_->Empty() && !IsHiddenByCode(*this);
    {
        const QScopedValueRollback once(changing_, true);
        if (corrects) {
            const std::u16string typed = Text().toStdU16String();
            const QString number = QString::number(TypedNumber(typed, numbers_->First(), numbers_->Last()));
            // Setting a text, even the same, leaves nothing for the box's own undo.
            if (number != Text()) {
                lineEdit()->setText(number);
            }
            lineEdit()->end(false);
        }
        // Keeps the chosen entry in step with the text: the toolkit would otherwise choose it, and run Click,
        // when the focus leaves.
        if (const int row = numbers_->RowOf(Text()); row >= 0) {
            const QSignalBlocker silent(this);
            setCurrentIndex(row);
        }
    }
    if (corrects) {
        emit Click();
    }
}

} // namespace KAL_AUTO_Node
