#pragma once

#include <QKeySequence>
#include <QPushButton>
#include <QShortcut>
#include <QString>

#include <utility>

namespace KAL_AUTO_Node {

// Keys that do not show in the captions; the tool tips name them.

inline constexpr const char* UndoKey = "Ctrl+Z";
inline constexpr const char* RedoKey = "Ctrl+Shift+Z";
inline constexpr const char* OtherRedoKey = "Ctrl+Y";
inline constexpr const char* FindKey = "Ctrl+F";
inline constexpr const char* GoToKey = "Ctrl+G";
inline constexpr const char* InformationKey = "Ctrl+I";
inline constexpr const char* FollowKey = "Ctrl+Return";
inline constexpr const char* BackKey = "Alt+Left";

inline constexpr const char* KeyProperty = "key";

// The key that was named for a control.
[[nodiscard]] inline QKeySequence ShortcutOf(const QWidget& control) {
    return control.property(KeyProperty).value<QKeySequence>();
}

inline void NameKey(QWidget& control, const char* key) {
    const QKeySequence keys(QString::fromLatin1(key));
    control.setProperty(KeyProperty, keys);
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
