#pragma once

#include <QWidget>

namespace KAL_AUTO_Node {

// Whether code has hidden the widget; one whose window isn't on screen yet is not hidden for that.
[[nodiscard]] inline bool IsHiddenByCode(const QWidget& widget) {
    return widget.testAttribute(Qt::WA_WState_ExplicitShowHide) && widget.testAttribute(Qt::WA_WState_Hidden);
}

} // namespace KAL_AUTO_Node
