#include "feedback/MessageBox.h"

#include "feedback/MousePointer.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>

#include <optional>

namespace KAL_AUTO_Node {

QMessageBox::StandardButton MsgBox(const QString& text, QMessageBox::Icon icon,
                                   QMessageBox::StandardButtons buttons, const QString& title,
                                   QMessageBox::StandardButton answersEnter,
                                   std::initializer_list<ButtonCaption> captions) {
    // A long operation that stops to say something is not busy meanwhile.
    std::optional<DefaultPointer> idle;
    if (QGuiApplication::overrideCursor() != nullptr) {
        idle.emplace();
    }
    // No window is active while another program is in front.
    QWidget* const modal = QApplication::activeModalWidget();
    // The host may delete the window above which the box stands, and with it the box.
    const QPointer<QMessageBox> box =
        new QMessageBox(icon, title, text, buttons, modal != nullptr ? modal : QApplication::activeWindow());
    box->setDefaultButton(answersEnter);
    for (const auto& [button, caption] : captions) {
        if (QAbstractButton* own = box->button(button)) {
            own->setText(caption);
        }
    }
    box->setTextFormat(Qt::PlainText);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // A host whose only visible window this is must not see it as its last one and quit.
    box->setAttribute(Qt::WA_QuitOnClose, false);
    const auto pressed = static_cast<QMessageBox::StandardButton>(box->exec());
    delete box;
    if (pressed != QMessageBox::NoButton) {
        return pressed;
    }
    // Closed by something else than a button or a key: the answer that changes least.
    for (const auto harmless : {QMessageBox::Cancel, QMessageBox::No}) {
        if (buttons.testFlag(harmless)) {
            return harmless;
        }
    }
    return QMessageBox::Ok;
}

bool Confirm(const QString& question) {
    return MsgBox(question, QMessageBox::Question, QMessageBox::Yes | QMessageBox::No,
                  QStringLiteral("Confirmation"), QMessageBox::No) == QMessageBox::Yes;
}

void Inform(const QString& text) {
    MsgBox(text, QMessageBox::Information, QMessageBox::Ok, QStringLiteral("Information"));
}

} // namespace KAL_AUTO_Node
