#pragma once

#include <QFocusEvent>

namespace KAL_AUTO_Node {

// Whether a focus event tells that somebody moved the focus. A window, a pop-up or a menu that comes to the
// front or goes again takes the focus away and brings it back to where it was; nobody moved it then.
[[nodiscard]] inline bool MovesFocus(const QEvent& event) {
    if (event.type() != QEvent::FocusIn && event.type() != QEvent::FocusOut) {
        return false;
    }
    const Qt::FocusReason reason = static_cast<const QFocusEvent&>(event).reason();
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason &&
           reason != Qt::MenuBarFocusReason;
}

} // namespace KAL_AUTO_Node
