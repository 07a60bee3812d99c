#include "controls/CompactStyle.h"

#include <QStyleOptionComplex>

#include <algorithm>

namespace KAL_AUTO_Node {

QRect CompactStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                   const QWidget* widget) const {
    constexpr int arrowWidth = 13;
    QRect rect = QProxyStyle::subControlRect(control, option, part, widget);
    if (control != CC_ComboBox || (part != SC_ComboBoxArrow && part != SC_ComboBoxEditField)) {
        return rect;
    }
    const QRect arrow = QProxyStyle::subControlRect(control, option, SC_ComboBoxArrow, widget);
    const int saved = std::max(0, arrow.width() - arrowWidth);
    const bool mirrored = option->direction == Qt::RightToLeft;
    if (part == SC_ComboBoxArrow) {
        return mirrored ? rect.adjusted(0, 0, -saved, 0) : rect.adjusted(saved, 0, 0, 0);
    }
    return mirrored ? rect.adjusted(-saved, 0, 0, 0) : rect.adjusted(0, 0, saved, 0);
}

} // namespace KAL_AUTO_Node
