#include "editor/ChangeWatch.h"

#include "rules/NodeRules.h"

#include <QApplication>
#include <QEvent>
#include <QToolTip>

#include <chrono>

namespace KAL_AUTO_Node {

namespace {

constexpr std::chrono::seconds BetweenLooks(4);
constexpr std::chrono::seconds NoteStays(15);

} // namespace

ChangeWatch::ChangeWatch(GUI& gui, NodeRules& rules) : gui_(gui), rules_(rules) {
    timer_.setParent(&gui);
    timer_.setObjectName(QStringLiteral("tmrChanges"));
    timer_.setInterval(BetweenLooks);
    connect(&timer_, &QTimer::timeout, this, &ChangeWatch::Look);
    gui.installEventFilter(this);
}

void ChangeWatch::Forget() {
    noticed_.clear();
    shown_ = true;
}

void ChangeWatch::Look() {
    const QWidget* modal = QApplication::activeModalWidget();
    if (gui_.IsActing() || (modal != nullptr && modal != &gui_)) {
        return; // a node is being loaded or saved, or a question is answered first
    }
    if (!noticed_.isEmpty() && noticedOf_ != gui_.StoredNode.get()) {
        Forget(); // the person has answered what to do about it
        StoreChanged();
    }
    if (const auto noticed = rules_.LookForOthersChange(gui_)) {
        shown_ = *noticed == noticed_ ? shown_ : noticed->isEmpty();
        noticed_ = *noticed;
        noticedOf_ = gui_.StoredNode.get();
        StoreChanged();
    }
    Show();
}

void ChangeWatch::Show() {
    if (shown_ || !gui_.isActiveWindow()) {
        return;
    }
    shown_ = true;
    const QRect label = gui_.txtDescription->rect();
    QToolTip::showText(gui_.txtDescription->mapToGlobal(label.bottomLeft()), noticed_, gui_.txtDescription,
                       {}, static_cast<int>(std::chrono::milliseconds(NoteStays).count()));
}

bool ChangeWatch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) {
        timer_.start();
    } else if (event->type() == QEvent::Hide) {
        timer_.stop();
    } else if (event->type() == QEvent::WindowActivate && timer_.isActive()) {
        // Not before the window is in front: that would take the note away again.
        QTimer::singleShot(0, this, &ChangeWatch::Look);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace KAL_AUTO_Node
