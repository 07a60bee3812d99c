// Shows the editor on one node: auto-node-edit [CONFIG PARTITION NODE]; without numbers on the first AUTO
// node of the store. Started by auto-node, which has checked the numbers.

#include "KAL_AUTO_Node/Business_Rules.h"
#include "feedback/MessageBox.h"
#include "nodes/Overview.h"
#include "platform/RuntimeError.h"
#include "platform/TellError.h"
#include "platform/VisibleText.h"
#include "platform/WholeNumber.h"
#include "store/DataBase.h"
#include "store/NoStore.h"

#include <QApplication>

#include <array>
#include <cstdint>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <unistd.h>

namespace {

using namespace KAL_AUTO_Node;

NodePlace FirstNode() {
    DataBase dataBase;
    const auto first = FirstAutoNode(dataBase);
    if (!first) {
        throw RuntimeError("there is no AUTO node in " + dataBase.File().string());
    }
    return *first;
}

int Edit(const NodePlace& place) {
    const auto& [partition, node] = place;
    Business_Rules rules;
    rules.ShowNodeEditor(partition.config, partition.number, node);
    if (!rules.Opened()) {
        TellError(place.Text() + " could not be opened as it should from " + DataBase().File().string() +
                  "; see the messages shown");
        return 1;
    }
    return 0;
}

bool HasTerminal() {
    return isatty(STDIN_FILENO) == 1 || isatty(STDOUT_FILENO) == 1 || isatty(STDERR_FILENO) == 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 1 && argc != 4) {
        std::cerr << "auto-node-edit: is started by auto-node edit\n";
        return 2;
    }
    // By this the desktop knows which of its entries the windows belong to.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.kal_auto_node.auto_node"));
    try {
        std::array<std::int16_t, 3> numbers{};
        for (int i = 1; i < argc; ++i) {
            numbers.at(static_cast<std::size_t>(i) - 1) = WholeNumber<std::int16_t>(argv[i]).value();
        }
        return Edit(argc == 1 ? FirstNode() : NodePlace{{numbers[0], numbers[1]}, numbers[2]});
    } catch (const std::exception& error) {
        const std::string told = ToldOfNoStore(error);
        TellError(told);
        // Nobody sees what is written by a program that was started from a menu.
        if (!HasTerminal()) {
            // The component has made one where it got that far.
            std::optional<QApplication> application;
            if (QCoreApplication::instance() == nullptr) {
                application.emplace(argc, argv);
            }
            MsgBox(QString::fromStdString(VisibleLines(told)), QMessageBox::Critical, QMessageBox::Ok,
                   QStringLiteral("AUTO Node Editor"));
        }
    }
    return 1;
}
