#pragma once

#include "feedback/ErrorReport.h"

#include <QObject>

namespace KAL_AUTO_Node {

// Runs the handler of a control's event; an error is reported under the handler's name, control and event
// joined.
template <class Body>
bool Handle(const QObject& control, const char* event, Body&& body) {
    const QByteArray name = control.objectName().toLatin1() + '_' + event;
    return Reporting(name.constData(), std::forward<Body>(body));
}

} // namespace KAL_AUTO_Node
