#pragma once

#include <QKeySequence>
#include <QPushButton>
#include <QShortcut>
#include <QString>

#include <utility>

namespace KAL_AUTO_Node {

// Keys that do not show in the captions; the tool tips name them.

inline void NameKey(QWidget& control, const char* key) {
    const QKeySequence keys(QString::fromLatin1(key));
    control.setToolTip(control.toolTip() + " (" + keys.toString(QKeySequence::NativeText) + ')');
}

// Runs a deed when the key is pressed in the window.
template <class Deed>
void OnKey(QWidget& window, const char* key, Deed&& deed) {
    auto* shortcut = new QShortcut(QKeySequence(QString::fromLatin1(key)), &window);
    QObject::connect(shortcut, &QShortcut::activated, &window, std::forward<Deed>(deed));
}

inline void PressOnKey(QPushButton& button, const char* key) {
    NameKey(button, key);
    OnKey(*button.window(), key, [&button] { button.click(); });
}

} // namespace KAL_AUTO_Node
