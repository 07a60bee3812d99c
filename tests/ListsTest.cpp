#include "testing/Person.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QScrollBar>

namespace KAL_AUTO_Node {
namespace {

using Lists = EditorTest;

TEST_F(Lists, EditorsTakeNothingThatWasMeantForOthers) {
    const Box question{"Confirmation", "Do you want to vacate Prompts Table?", QMessageBox::Question,
                       QMessageBox::Yes | QMessageBox::No};
    const auto deeds = [&] {
        Person::Press("cmdPromptsEdit");
        Person::ClickRow("LVPrompts", 1);
        const auto open = Person::OpenEditors();
        QComboBox* node = Person::Combo("cmbPromptsNode");
        // A wheel that scrolls nothing hides nothing, and a key held down since before changes nothing.
        Person::Scroll("LVPrompts");
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Down, {}, {}, true);
        QApplication::sendEvent(node, &held);
        // Neither does one that was let go of, or whose box was left.
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Down, {});
        QFocusEvent leave(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
        for (QEvent* end : {static_cast<QEvent*>(&release), static_cast<QEvent*>(&leave)}) {
            QTest::keyPress(node, Qt::Key_Down);
            QApplication::sendEvent(node, end);
            QApplication::sendEvent(node, &held);
            EXPECT_EQ(node->currentText(), "TIME");
            QTest::keyClick(node, Qt::Key_Up);
        }
        Person::Choose("cmbPromptsNumber", "2");
        // The Escape that closes a pop-up may come to the window, too.
        node->showPopup();
        QTest::keyClick(node->view(), Qt::Key_Escape);
        for (QWidget* receiver : {static_cast<QWidget*>(node), Person::Window("GUI")}) {
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
            QApplication::sendEvent(receiver, &escape);
        }
        // A question that is taken away has not been answered with Yes.
        person_.LookAtBox = [](QMessageBox& box) { box.done(0); };
        Person::Choose("cmbPromptsNode", "EMPTY");
        EXPECT_EQ(Person::Text("cmbPromptsNode") + Person::Text("cmbPromptsNumber"), "MSG2");
        EXPECT_EQ(Person::OpenEditors(), open);
        EXPECT_EQ(open.size(), 2U);
        // A pop-up that the window system takes away keeps no Escape back.
        node->showPopup();
        node->view()->window()->hide();
        QCoreApplication::processEvents();
        QTest::keyClick(node, Qt::Key_Escape);
        EXPECT_TRUE(Person::OpenEditors().empty());
    };
    Edit(1, deeds, {question});
}

TEST_F(Lists, AreDrawn) {
    Edit(4, [] {
        QTreeView* list = Person::List("LVPrompts");
        QWidget* rows = list->viewport();
        const auto cell = [&](int row) { return list->visualRect(list->model()->index(row, 2)); };
        const auto drawn = [&](int row) { return rows->grab(cell(row)).toImage(); };
        const QImage plain = drawn(0);
        EXPECT_NE(plain, drawn(1)) << "by their texts";
        for (const QPoint& line : {plain.rect().bottomLeft(), plain.rect().topRight()}) {
            EXPECT_EQ(plain.pixel(line), list->palette().color(QPalette::Midlight).rgb());
        }
        Person::ClickRow("LVPrompts", 0);
        const QImage chosen = drawn(0);
        list = Person::List("LVActions");
        list->setFocus();
        const QImage elsewhere = Person::List("LVPrompts")->viewport()->grab(cell(0)).toImage();
        EXPECT_TRUE(chosen != plain && elsewhere != plain && elsewhere != chosen);
    });
    // While a row is dragged a line shows where it would go, which Escape takes away.
    Edit(1, [] {
        QTreeView* list = Person::List("LVPrompts");
        QWidget* rows = list->viewport();
        std::vector<QImage> looks;
        for (const int beside : {-5, 0, 5, 5000}) {
            const auto look = [&] {
                looks.push_back(rows->grab().toImage());
                EXPECT_EQ(rows->cursor().shape(), beside < 5000 ? Qt::DragMoveCursor : Qt::ForbiddenCursor);
                if (beside < 5000) {
                    QTest::keyClick(list, Qt::Key_Escape);
                }
            };
            Person::DragRow("LVPrompts", 2, "LVPrompts", 0, look, beside);
            EXPECT_EQ(rows->cursor().shape(), Qt::ArrowCursor);
        }
        EXPECT_EQ(looks[3], rows->grab().toImage());
        EXPECT_NE(looks[0], looks[3]);
        EXPECT_EQ(looks[0], looks[1]);
        EXPECT_NE(looks[1], looks[2]);
        EXPECT_FALSE(Person::Dirty());
        // A double click beside the rows opens none.
        QTest::mouseDClick(rows, Qt::LeftButton, {}, {5, rows->height() - 2});
        QTest::mouseRelease(rows, Qt::LeftButton, {}, {5, rows->height() - 2});
        EXPECT_EQ(Person::Caption("cmdPromptsEdit"), "Edit");
    });
    // A row that is dragged to the edge scrolls the list, and goes to where the edge is by then.
    Edit(4, [] {
        QTreeView* list = Person::List("LVActions");
        const int beside = list->viewport()->height() - 4 - Person::InRow("LVActions", 0).y();
        const int edge = list->indexAt({5, list->viewport()->height() - 4}).row();
        const QScrollBar& bar = *list->verticalScrollBar();
        const auto wait = [&] { EXPECT_TRUE(QTest::qWaitFor([&] { return bar.value() > 3; })); };
        Person::DragRow("LVActions", 0, "LVActions", 0, wait, beside);
        EXPECT_GT(Person::SelectedRows("LVActions").front(), edge);
        const int reached = bar.value();
        QTest::qWait(120);
        EXPECT_EQ(bar.value(), reached);
    });
}

TEST_F(Lists, HaveAMenuOfWhatCanBeDone) {
    Edit(1, [] {
        const auto choose = [](const std::string& list, const char* chosen) {
            std::string offered;
            QTimer::singleShot(0, [&] {
                auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                ASSERT_NE(menu, nullptr);
                for (QAction* action : menu->actions()) {
                    if (action->isEnabled() || action->isSeparator()) {
                        const bool keyShown =
                            action->isShortcutVisibleInContextMenu() && !action->shortcut().isEmpty();
                        offered += action->isSeparator()
                                       ? "| "
                                       : action->text().toStdString() + (keyShown ? " " : ", ");
                    }
                    if (action->text() == QLatin1String(chosen)) {
                        menu->setActiveAction(action);
                    }
                }
                QTest::keyClick(menu, Qt::Key_Return);
            });
            QTest::keyClick(Person::List(list), Qt::Key_F10, Qt::ShiftModifier);
            return offered;
        };
        QGuiApplication::clipboard()->clear();
        EXPECT_EQ(choose("LVActions", "Add"), "Add Insert Remove Edit Up Down Quick | | | | Find ");
        EXPECT_EQ(choose("LVActions", "Copy"),
                  "Add Insert Remove Edit Up Down Quick | Undo | Cut Copy | Information on MSG 1, | Find ");
        EXPECT_EQ(
            choose("LVActions", "Undo"),
            "Add Insert Remove Edit Up Down Quick | Undo | Cut Copy Paste | Information on MSG 1, | Find ");
        EXPECT_EQ(Person::Count("LVActions"), 9);
        EXPECT_EQ(Person::Window("GUI")->focusWidget(), Person::List("LVActions"));
        EXPECT_EQ(
            choose("LVActions", "Edit"),
            "Add Insert Remove Edit Up Down Quick | Redo | Cut Copy Paste | Information on XFER 1, | Find ");
        EXPECT_EQ(choose("LVActions", "Edit Off"), "Edit Off | Undo | Copy | Information on XFER 1, | Find ");
        EXPECT_EQ(choose("LVExceptions", "Find"), "Edit Default, | Undo | Paste | | Find ");
        EXPECT_EQ(Person::Window("GUI")->focusWidget(), Person::TextBox("txtFind"));
    });
}

} // namespace
} // namespace KAL_AUTO_Node
