#pragma once

#include <QProxyStyle>

namespace KAL_AUTO_Node {

// Combo boxes with a narrow arrow, for boxes that float over the cells of a list: the room goes to their
// text.
class CompactStyle : public QProxyStyle {
  public:
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl part, const QWidget* widget) const override;
};

} // namespace KAL_AUTO_Node
