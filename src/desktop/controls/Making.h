#pragma once

#include <QLabel>
#include <QPushButton>
#include <QString>

namespace KAL_AUTO_Node {

// How the windows make their controls.

template <class Control>
Control* Named(Control* control, const char* name) {
    control->setObjectName(QString::fromLatin1(name));
    return control;
}

inline QPushButton* Button(QWidget* parent, const char* name, const char* caption, const char* hint) {
    auto* button = Named(new QPushButton(QString::fromLatin1(caption), parent), name);
    button->setToolTip(QString::fromLatin1(hint));
    return button;
}

// A label before a control, whose accessible name it becomes.
inline QLabel* Caption(QWidget* parent, const char* name, const char* caption, QWidget* buddy) {
    auto* label = Named(new QLabel(QString::fromLatin1(caption), parent), name);
    label->setBuddy(buddy);
    QString spoken = label->text();
    if (spoken.endsWith(':')) {
        spoken.chop(1);
    }
    buddy->setAccessibleName(spoken);
    return label;
}

} // namespace KAL_AUTO_Node
