#include <QApplication>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>

#include <KAL_AUTO_Node/Business_Rules.h>
#include <cstdint>
#include <iostream>

// A host that has no QApplication. Qt serves only to look at what the library shows and to close it.

namespace {

QStringList shown;

// Notes a message's text or a window's title, and closes it.
void CloseModalWindow() {
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr) {
        return;
    }
    const auto* message = qobject_cast<QMessageBox*>(window);
    shown.append(message != nullptr ? message->text() : window->windowTitle());
    window->close();
}

// Runs when the library makes its application.
void WatchModalWindows() {
    auto* timer = new QTimer(QCoreApplication::instance());
    QObject::connect(timer, &QTimer::timeout, &CloseModalWindow);
    timer->start(20);
}

bool Shows(std::int16_t node, const QString& expected, bool opened) {
    shown.clear();
    KAL_AUTO_Node::Business_Rules rules;
    rules.ShowNodeEditor(1, 2, node);
    if (shown == QStringList{expected} && rules.Opened() == opened) {
        return true;
    }
    std::cerr << "Node " << node << (rules.Opened() ? " opened" : " did not open") << "; shown:\n"
              << shown.join('\n').toStdString() << '\n';
    return false;
}

// Where the process has an application without windows, the editor cannot be shown; it says so.
bool RefusesWithoutWindows() {
    int count = 1;
    char name[] = "host";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    KAL_AUTO_Node::Business_Rules rules;
    try {
        rules.ShowNodeEditor(1, 2, 1);
        return false;
    } catch (const KAL_AUTO_Node::Error& error) {
        return error.Number() == 5;
    }
}

} // namespace

int main() {
    const bool refused = RefusesWithoutWindows();
    qAddPreRoutine(WatchModalWindows);
    const bool missing = Shows(25, "AUTO 25 doesn't exist.", false);
    const bool present = Shows(1, "AUTO Node Editor", true);
    return refused && missing && present ? 0 : 1;
}
