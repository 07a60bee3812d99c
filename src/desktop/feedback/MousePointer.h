#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace KAL_AUTO_Node {

// Shows one mouse pointer everywhere as long as it lives, then the one shown before.
class MousePointer {
  public:
    explicit MousePointer(Qt::CursorShape shape) { QGuiApplication::setOverrideCursor(QCursor(shape)); }

    ~MousePointer() { QGuiApplication::restoreOverrideCursor(); }

    MousePointer(const MousePointer&) = delete;
    MousePointer& operator=(const MousePointer&) = delete;
};

// The busy pointer of a long operation.
class Hourglass : public MousePointer {
  public:
    Hourglass() : MousePointer(Qt::WaitCursor) {}
};

// The normal pointer while a long operation asks a person something.
class DefaultPointer : public MousePointer {
  public:
    DefaultPointer() : MousePointer(Qt::ArrowCursor) {}
};

} // namespace KAL_AUTO_Node
