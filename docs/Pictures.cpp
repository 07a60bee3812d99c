// Takes pictures of the windows on the demo store. Call: Pictures FOLDER [dark]

#include "testing/OwnSettings.h"
#include "testing/Person.h"
#include "testing/TestStore.h"

#include <QContextMenuEvent>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <QTabWidget>

#include <iostream>

using namespace KAL_AUTO_Node;

namespace {

class Photographer {
  public:
    explicit Photographer(std::filesystem::path folder) : folder_(std::move(folder)) {
        std::filesystem::create_directories(folder_);
        person_.LookAtBox = [this](QMessageBox& box) { Take(box, nextBox_); };
    }

    void TakeAll() {
        Edit(8, [&] { FindAndOpenMenu("find-menu"); });
        Edit(1, [&] { TakeGoTo("go-to"); });
        Edit(8, [&] {
            for (const char* label : {"Sales and orders", "Sales"}) {
                Person::TypeOver("txtDescription", label);
                Person::Press("cmdApply");
            }
        });
        // As a person sees them, whoever takes the pictures.
        store_.Execute("UPDATE Node_AUTO_Version SET UserName = 'anna', HostName = 'desk-2', "
                       "Program = 'auto-node-edit', BegunAt = '2026-11-2' || VersionNo || 'T09:30:00.000Z'");
        Edit(1, [&] {
            TakeInformation({{Qt::Key_U, "information-uses"}, {Qt::Key_E, "information-entries"}});
        });
        Edit(8, [&] { TakeInformation({{Qt::Key_H, "information-history"}}); });
        Edit(1, [&] {
            TakeWindow("editor");
            EditRow("LVPrompts", "cmdPromptsEdit", 1, "prompts-editing");
            EditRow("LVActions", "cmdActionsEdit", 5, "actions-editing");
            EditRow("LVExceptions", "cmdExceptionsEdit", 1, "exceptions-editing");
            QuickAssign("cmdQuickPrompts", "quick-prompts");
            QuickAssign("cmdQuickActions", "quick-actions");
            Refusals();
        });
        Edit(4, [&] { EditRow("LVActions", "cmdActionsEdit", 40, "actions-scrolled"); });
        Edit(5, [&] {
            nextBox_ = "message-max-number";
            EditRow("LVActions", "cmdActionsEdit", 0, "");
        });
        Edit(6, [&] {
            nextBox_ = "message-missing-node";
            person_.WillAnswer({QMessageBox::Cancel});
            Person::TypeOver("txtDescription", "Opening");
            Person::Press("cmdApply");
        });
        Edit(8, [&] {
            Person::TypeOver("txtDescription", "Sales and wholesale");
            store_.Execute("UPDATE Detail_AUTO_Action SET NodeNumber = 26 WHERE ConfigID = 1 AND PartID = 2"
                           " AND NodeMasterID = 8 AND SequenceNo = 2");
            nextBox_ = "message-both";
            Person::Press("cmdApply");
        });
        nextBox_ = "message-no-node";
        Edit(25, [] {});
        person_.Boxes(); // all are in the pictures
    }

  private:
    void Edit(int node, const std::function<void()>& deeds) {
        person_.Edit(node, [&] {
            QCoreApplication::processEvents(); // by one of them the window becomes the active one
            deeds();
        });
    }

    void Take(QWidget& widget, const std::string& name) {
        if (!name.empty()) {
            QCoreApplication::processEvents();
            Save(widget.grab(), name);
        }
    }

    void Save(const QPixmap& picture, const std::string& name) {
        const auto file = folder_ / (name + ".png");
        if (!picture.save(QString::fromStdString(file.string()))) {
            throw std::runtime_error("cannot write " + file.string());
        }
        std::cout << file.string() << '\n';
    }

    void TakeWindow(const std::string& name) { Take(*Person::Window("GUI"), name); }

    void EditRow(const char* list, const char* button, int row, const std::string& name) {
        Person::ClickRow(list, row);
        Person::Press(button);
        TakeWindow(name);
        Person::Press(button);
    }

    void QuickAssign(const char* button, const std::string& name) {
        person_.InQuickAssign(button, [&] { Take(*Person::Window("frmQuickAssign"), name); });
    }

    // In the window that a key opens, once it shows what it has read.
    void TakeGoTo(const std::string& name) {
        QTimer::singleShot(0, [&] {
            QWidget* window = Person::Window("frmGoTo");
            if (QTest::qWaitFor([] { return Person::Count("LVGoTo") > 0; })) {
                QTest::keyClicks(window->focusWidget(), "sale");
                Take(*window, name);
            }
            window->close();
        });
        QTest::keyClick(Person::Window("GUI"), Qt::Key_G, Qt::ControlModifier);
    }

    // The pages by their keys.
    void TakeInformation(std::initializer_list<std::pair<Qt::Key, const char*>> pages) {
        QTest::keyClick(Person::Window("GUI"), Qt::Key_I, Qt::ControlModifier);
        QWidget* window = Person::Window("frmInformation");
        const auto* tabs = window->findChild<QTabWidget*>();
        static_cast<void>(QTest::qWaitFor([&] { return tabs->tabText(3).contains('('); }));
        for (const auto& [key, name] : pages) {
            window->activateWindow();
            QTest::keyClick(window, key, Qt::AltModifier);
            if (key == Qt::Key_E) {
                QTest::keyClicks(Person::TextBox("txtInfoEntry"), "60");
            }
            Take(*window, name);
        }
    }

    void FindAndOpenMenu(const std::string& name) {
        QTreeView* list = Person::List("LVActions");
        list->setFocus();
        QTest::keyClick(list, Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(Person::TextBox("txtFind"), "sale");
        QTest::keyClick(Person::TextBox("txtFind"), Qt::Key_Return);
        QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
        QTimer::singleShot(0, [&] {
            QWidget* menu = QApplication::activePopupWidget();
            const QWidget* window = Person::Window("GUI");
            // A window of its own, above the other.
            QPixmap picture = Person::Window("GUI")->grab();
            QPainter(&picture).drawPixmap(window->mapFromGlobal(menu->pos()), menu->grab());
            Save(picture, name);
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
        QApplication::sendEvent(list, &event);
    }

    void Refusals() {
        Person::TypeOver("txtDescription", "it''s");
        nextBox_ = "message-label";
        Person::Press("cmdApply");
        nextBox_ = "message-save";
        Person::Press("cmdNext");
        Person::ClickRow("LVActions", 0);
        Person::Press("cmdActionsEdit");
        Person::TypeOver("txtActionsDTMFRangeLow", "9");
        Person::TypeOver("txtActionsDTMFRangeHigh", "9");
        nextBox_ = "message-duplicate";
        Person::Press("cmdApply");
        Person::ClickRow("LVPrompts", 0);
        Person::Press("cmdPromptsEdit");
        nextBox_ = "message-vacate";
        Person::Choose("cmbPromptsNode", "EMPTY");
        nextBox_.clear();
    }

    std::filesystem::path folder_;
    TestStore store_;
    Person person_;
    std::string nextBox_;
};

QPalette DarkPalette() {
    QPalette palette(QColor(53, 53, 53), QColor(40, 40, 40));
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    return palette;
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const OwnSettings own;
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2) {
        std::cerr << "Call: Pictures FOLDER [dark]\n";
        return 2;
    }
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (arguments.contains(QStringLiteral("dark"))) {
        QApplication::setPalette(DarkPalette());
    }
    try {
        Photographer(arguments[1].toStdString()).TakeAll();
    } catch (const std::exception& error) {
        std::cerr << "Pictures: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
