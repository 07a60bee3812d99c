#pragma once

#include <QHash>
#include <QProxyStyle>
#include <QStyledItemDelegate>

#include <functional>

class QComboBox;

namespace KAL_AUTO_Node {

// Shows a second column in a box's pop-up: what each entry's number stands for. The texts of the entries stay
// as they are. A label is asked for when its entry gets on screen, once as long as the pop-up is open.
class LabelledPopup : public QStyledItemDelegate {
  public:
    // The label of an entry's number (its item data where it has any, else its text); empty where there is
    // none.
    using LabelOf = std::function<QString(int number)>;

    LabelledPopup(QComboBox& box, LabelOf labelOf);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    [[nodiscard]] QString Label(const QModelIndex& index) const;
    void MakeRoom() const;

    QComboBox& box_;
    LabelOf labelOf_;
    mutable QHash<int, QString> labels_;
};

// Gives a box a pop-up that is a list with a scroll bar instead of a menu over the whole screen.
class ListPopupStyle : public QProxyStyle {
  public:
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* data) const override;
};

} // namespace KAL_AUTO_Node
