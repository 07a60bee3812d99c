#pragma once

#include "form/GUI.h"

#include <QLayout>
#include <QPointer>

namespace KAL_AUTO_Node {

// While a long operation runs: the upper part of the window takes no input and the status bar is there to
// tell how far it is, and it cannot be closed. All are restored at its end, and the focus goes back to where
// the disabled frame took it from.
class LongOperation {
  public:
    explicit LongOperation(GUI& gui) : gui_(gui), acting_(gui), focus_(gui.focusWidget()) {
        // What looks otherwise while it is disabled is painted once, when it is over, unless something is
        // asked in between.
        gui_.Frame1->setUpdatesEnabled(false);
        gui_.Frame1->setEnabled(false);
        gui_.StatusBar1->show();
    }

    ~LongOperation() {
        gui_.StatusBar1->hide();
        gui_.Frame1->setEnabled(true);
        gui_.Frame1->setUpdatesEnabled(true);
        if (focus_ && gui_.Frame1->isAncestorOf(focus_)) {
            focus_->setFocus(Qt::OtherFocusReason);
        }
    }

    LongOperation(const LongOperation&) = delete;
    LongOperation& operator=(const LongOperation&) = delete;

    // Shows a text at once; input stays where it is until the operation is over.
    static void ShowProgress(const GUI& gui, const QString& text) {
        gui.StatusBar1->SetPanelText(text);
        gui.StatusBar1->layout()->activate();
        gui.StatusBar1->repaint();
    }

  private:
    GUI& gui_;
    GUI::Acting acting_;
    QPointer<QWidget> focus_;
};

} // namespace KAL_AUTO_Node
