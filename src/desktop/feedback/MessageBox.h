#pragma once

#include <QMessageBox>
#include <QString>

#include <initializer_list>
#include <utility>

namespace KAL_AUTO_Node {

using ButtonCaption = std::pair<QMessageBox::StandardButton, QString>;

// The message box of the window system: modal above the window in use, its text taken as it stands (never as
// rich text: labels and engine messages may hold anything), under the normal mouse pointer. Returns the
// button pressed; closing the box, or deleting the window that it belongs to, answers as its Cancel button or
// its only button would. Enter presses the button given; those with captions of their own
// say these.
QMessageBox::StandardButton MsgBox(const QString& text, QMessageBox::Icon icon,
                                   QMessageBox::StandardButtons buttons, const QString& title,
                                   QMessageBox::StandardButton answersEnter = QMessageBox::NoButton,
                                   std::initializer_list<ButtonCaption> captions = {});

// A question before something is done that is not easily undone: Yes or No, of which Enter answers No.
[[nodiscard]] bool Confirm(const QString& question);

// A refusal or a piece of news: information icon, OK only, title "Information".
void Inform(const QString& text);

} // namespace KAL_AUTO_Node
