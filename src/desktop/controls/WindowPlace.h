#pragma once

#include <QString>

class QWidget;

namespace KAL_AUTO_Node {

// The size and place of a window as the person has left it, under the window's name; kept where the desktop
// keeps what programs remember for a person. A courtesy: where it cannot be read, the window is as it was
// made, and where it cannot be kept, nobody is told.

// Before the window is shown. What does not fit the screens of today is brought back onto them.
void RestorePlace(QWidget& window);

// While it is still shown.
void KeepPlace(const QWidget& window);

} // namespace KAL_AUTO_Node
