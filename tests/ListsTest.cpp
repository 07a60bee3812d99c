#include "testing/Person.h"

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>

namespace KAL_AUTO_Node {
namespace {

using Lists = EditorTest;

// The keys, leads and targets of a list's rows.
std::string Rows(const std::string& list) {
    std::string rows;
    for (int row = 0; row < Person::Count(list); ++row) {
        rows += (row > 0 ? ", " : "") + Person::Key(list, row) + ' ' + Person::Cell(list, row, 1) + ' ' +
                Person::Cell(list, row, 2);
    }
    return rows;
}

void Key(QWidget* widget, int key, Qt::KeyboardModifiers with = Qt::ControlModifier) {
    widget->setFocus();
    QTest::keyClick(widget, static_cast<Qt::Key>(key), with);
}

// What each button makes of some selected rows, and which are selected then; all of it is taken back.
TEST_F(Lists, AreChangedByTheirButtons) {
    using Selected = std::vector<int>;
    const std::string prompts = "1a 1 MSG 55, 3a 3 MSG 12, 7a 7 TIME 4";
    const std::string actions = "1a 1-1 MSG 56, 3a 2-2 MSG 18, 7a 3-3 TIME 3";
    const std::string four = "1a 1 MSG 55, 2a 2 MSG 12, 3a 3 TIME 4, 4a 4 MSG 1";
    const std::vector<std::tuple<std::string, Selected, std::string, std::string, Selected>> cases = {
        {"Prompts", {}, "Add", four, {3}},
        {"Prompts", {2}, "Insert", "1a 1 MSG 55, 2a 2 MSG 12, 3a 3 MSG 1, 4a 4 TIME 4", {2}},
        {"Prompts", {0, 2}, "Insert", prompts, {0, 2}},
        {"Prompts", {0, 2}, "Remove", "1a 1 MSG 12", {0}},
        {"Prompts", {2}, "Remove", "1a 1 MSG 55, 2a 2 MSG 12", {1}},
        {"Prompts", {0, 1, 2}, "Remove", "1a 1 EMPTY", {0}},
        {"Prompts", {}, "Remove", prompts, {}},
        {"Prompts", {0}, "Up", prompts, {0}},
        {"Prompts", {1}, "Up", "1a 1 MSG 12, 2a 2 MSG 55, 3a 3 TIME 4", {0}},
        {"Prompts", {1, 2}, "Down", prompts, {1, 2}},
        {"Actions", {0, 1}, "Insert", "1a 1-1 MSG 56, 2a 2-2 MSG 18, 3a 3-3 TIME 3, 4a 4-4 MSG 1", {3}},
        {"Actions", {1}, "Insert", "1a 1-1 MSG 56, 2a 2-2 MSG 1, 3a 2-2 MSG 18, 4a 3-3 TIME 3", {1}},
        {"Actions", {1}, "Down", "1a 1-1 MSG 56, 2a 3-3 TIME 3, 3a 2-2 MSG 18", {2}},
        {"Actions", {2}, "Down", actions, {2}},
        {"Exceptions",
         {1},
         "Default",
         "1a Timeout MSG 1, 2a Invalid MSG 1, 3a Abort MSG 1, 4a * NONE, 5a # NONE",
         {}},
    };
    Edit(15, [&] {
        for (const auto& [list, selected, button, after, selectedAfter] : cases) {
            SCOPED_TRACE(list + ' ' + button + " with " + testing::PrintToString(selected));
            const std::string view = "LV" + list;
            const std::string before = Rows(view);
            Person::List(view)->selectionModel()->clear();
            for (const int row : selected) {
                Person::ClickRow(view, row, Qt::ControlModifier);
            }
            Person::MarkUnchanged();
            Person::Press("cmd" + list + button);
            EXPECT_EQ(Rows(view), after);
            EXPECT_EQ(Person::SelectedRows(view), selectedAfter);
            if (selectedAfter.size() == 1) {
                EXPECT_EQ(Person::List(view)->currentIndex().row(), selectedAfter.front());
            }
            const bool moves = button == "Up" || button == "Down";
            EXPECT_EQ(Person::Dirty(), moves || after != before);
            if (after != before) {
                Key(Person::List(view), Qt::Key_Z);
            }
            EXPECT_EQ(Rows(view), before);
        }
        Person::List("LVActions")->setFocus();
        Person::List("LVActions")->selectionModel()->clear();
        Key(Person::List("LVActions"), Qt::Key_A);
        EXPECT_EQ(Person::SelectedRows("LVActions"), (Selected{0, 1, 2}));
        EXPECT_EQ(Person::List("LVActions")->currentIndex().row(), 0);
        QWidget* rows = Person::List("LVActions")->viewport();
        QTest::mouseDClick(rows, Qt::LeftButton, {}, {5, rows->height() - 2});
        QTest::mouseRelease(rows, Qt::LeftButton, {}, {5, rows->height() - 2});
        EXPECT_EQ(Person::Caption("cmdActionsEdit"), "Edit");
        // Nothing is inserted before the placeholder.
        Key(Person::List("LVPrompts"), Qt::Key_A);
        Key(Person::List("LVPrompts"), Qt::Key_Delete, {});
        Person::Press("cmdPromptsInsert");
        EXPECT_EQ(Rows("LVPrompts"), "1a 1 MSG 1");
    });
}

// What a chosen type or number makes of the row under the editors; Escape takes it back.
TEST_F(Lists, EditorsWriteTheirRow) {
    const Box question{"Confirmation", "Do you want to vacate Prompts Table?", QMessageBox::Question,
                       QMessageBox::Yes | QMessageBox::No};
    const std::vector<std::tuple<std::string, int, std::string, std::string, std::string>> cases = {
        {"Prompts", 0, "cmbPromptsNode", "TIME", "1|1|TIME 1||TIME|2|1"},
        {"Prompts", 0, "cmbPromptsNumber", "250", "1|1|MSG 250||MSG|0|250"},
        {"Actions", 0, "cmbActionsNode", "EMPTY", "1|1-1|EMPTY||EMPTY|999|1|1|1"},
        {"Actions", 0, "cmbActionsNode", "XFER", "1|1-1|XFER 56||XFER|4|56|1|1"},
        {"Exceptions", 1, "cmbExceptionsInvalidNode", "NONE", "2|Invalid|NONE||NONE|814|1"},
        {"Exceptions", 3, "cmbExceptionsStarNode", "AUTO", "4|*|AUTO 1||AUTO|9|1"},
    };
    const auto deeds = [&] {
        for (const auto& [list, row, editor, choice, after] : cases) {
            SCOPED_TRACE(editor + ' ' + choice);
            const std::string view = "LV" + list;
            const std::string before = Person::Row(view, row);
            Person::ClickRow(view, row);
            Key(Person::List(view), Qt::Key_F2, {});
            Person::Choose(editor, choice);
            EXPECT_EQ(Person::Row(view, row), after);
            Key(Person::Find<QWidget>(editor), Qt::Key_Escape, {});
            EXPECT_EQ(Person::Row(view, row), before);
            Key(Person::List(view), Qt::Key_Z);
            EXPECT_EQ(Person::Row(view, row), before) << "nothing is left to take back";
        }
        Person::ClickRow("LVPrompts", 1);
        Key(Person::List("LVPrompts"), Qt::Key_F2, {});
        person_.WillAnswer({QMessageBox::Yes});
        Person::Choose("cmbPromptsNode", "EMPTY");
        EXPECT_EQ(Rows("LVPrompts"), "1a 1 EMPTY");
        EXPECT_TRUE(Person::OpenEditors().empty());
    };
    Edit(15, deeds, {question});
}

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

TEST_F(Lists, TakeNoTextThatCouldNotBeChosen) {
    const std::vector<std::array<const char*, 3>> cases = {
        {"Actions", " \n\r\n", ""},
        {"Actions", "1\t2\tMSG\t3\n\n3\t4x\tMSG\t3", "3: a range consists of digits, not of \"4x\""},
        {"Actions", "\t1\tMSG\t3", "1: a range consists of digits, not of \"\""},
        {"Actions", "1\t2\tMSG", "1: it has 3 cells instead of 4 or more"},
        {"Actions", "1\t2\tmsg\t3", "1: the type \"msg\" cannot be chosen here"},
        {"Actions", "1\t2\tMSG\t251", "1: \"MSG\" has the numbers 1 to 250, not \"251\""},
        {"Actions", "1\t2\tMSG\t0", "1: \"MSG\" has the numbers 1 to 250, not \"0\""},
        {"Actions", "1\t2\tMSG\t4294967297", "1: \"MSG\" has the numbers 1 to 250, not \"4294967297\""},
        {"Actions", "1\t2\tMSG\t\tlabel", "1: \"MSG\" has the numbers 1 to 250, not \"\""},
        {"Actions", "1\t2\tEMPTY\t7", "1: \"EMPTY\" has no number \"7\""},
        {"Prompts", "MSG\t1\nEMPTY\t", "2: \"EMPTY\" stands for a list without prompts"},
        {"Exceptions", "*\tMSG\t1\n*\tMSG\t2", "2: the exception \"*\" is there already"},
        {"Exceptions", "Star\tMSG\t1", "1: there is no exception \"Star\""},
        {"Exceptions", "Abort\tM_ON\t1", "1: the type \"M_ON\" cannot be chosen here"},
    };
    Edit(1, [&] {
        for (const auto& [list, text, why] : cases) {
            const std::string name = std::string("LV") + list;
            const auto before = Person::Rows(name);
            QGuiApplication::clipboard()->setText(text);
            Key(Person::List(name), Qt::Key_V);
            const std::string line = why;
            const std::string told = line.empty() ? "There are no rows to paste."
                                                  : "Line " + line.substr(0, 1) + " cannot be pasted" +
                                                        line.substr(1) + ". Nothing was pasted.";
            EXPECT_EQ(person_.Boxes(), std::vector{Information(told)});
            EXPECT_EQ(Person::Rows(name), before);
        }
        EXPECT_FALSE(Person::Dirty());
        // What a spreadsheet makes of it.
        QGuiApplication::clipboard()->setText(" 007 \t9\tMSG\t0012\t=label\tmore\r\n5\t5\tEMPTY\t");
        Person::ClickRow("LVActions", 2);
        Key(Person::List("LVActions"), Qt::Key_V);
        EXPECT_EQ(Person::Row("LVActions", 2), "3|007-9|MSG 12||MSG|0|12|007|9");
        EXPECT_EQ(Person::Row("LVActions", 3).substr(0, 12), "4|5-5|EMPTY|");
        EXPECT_EQ(Person::SelectedRows("LVActions"), (std::vector{2, 3}));
        Key(Person::List("LVActions"), Qt::Key_V);
        EXPECT_EQ(Person::SelectedRows("LVActions"), (std::vector{11, 12}))
            << "at the end: two were selected";
    });
}

// From node to node, as text; what came of it is undone there alone.
TEST_F(Lists, GiveRowsToOtherNodes) {
    store_.Execute("UPDATE Node_General_Pool SET NodeDescription = iif(NodeNumber = 8, '=1+1' || char(9, 10),"
                   " '\"B\"') WHERE PartID = 2 AND NodeTypeID = 9 AND NodeNumber IN (8, 9)");
    const auto copied = [](const std::string& list, int first, int last) {
        Person::ClickRow(list, first);
        Person::ClickRow(list, last, Qt::ShiftModifier);
        Key(Person::List(list), Qt::Key_C);
        return QGuiApplication::clipboard()->text().toStdString();
    };
    Edit(1, [&] {
        EXPECT_EQ(copied("LVExceptions", 4, 4), "#\tNONE\t\t\n");
        EXPECT_EQ(copied("LVPrompts", 1, 2), "MSG\t2\tWelcome, main menu\nMSG\t3\tToday's specials\n");
        Person::Choose("cmbNode", "AUTO 7");
        Key(Person::List("LVPrompts"), Qt::Key_V);
        EXPECT_EQ(Person::Rows("LVPrompts"),
                  (std::vector<std::string>{"1a: 1|1|MSG 2||MSG|0|2", "2a: 2|2|MSG 3||MSG|0|3"}));
        // The text box has its own.
        Person::TypeLabel("x");
        Key(Person::TextBox("txtDescription"), Qt::Key_Z);
        EXPECT_EQ(Person::Count("LVPrompts"), 2);
        Person::MarkUnchanged();
        Key(Person::List("LVActions"), Qt::Key_Z);
        EXPECT_EQ(Person::Row("LVPrompts", 0), "1|1|EMPTY||EMPTY|999|1");
        EXPECT_TRUE(Person::Dirty());
        Key(Person::List("LVActions"), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(Person::Count("LVPrompts"), 2);
        Person::MarkUnchanged();
        Person::Choose("cmbNode", "AUTO 1");
        Key(Person::List("LVPrompts"), Qt::Key_Z);
        EXPECT_EQ(Person::Count("LVPrompts"), 3);
        EXPECT_FALSE(Person::Dirty());
        store_.Execute(
            "UPDATE Node_General_Pool SET NodeDescription = CASE NodeNumber WHEN 2 THEN '@A' WHEN 3"
            " THEN '-1' ELSE '+1' END WHERE PartID = 2 AND NodeTypeID IN (0, 2)");
        Person::Choose("cmbNode", "AUTO 2");
        Person::Choose("cmbNode", "AUTO 1");
        EXPECT_EQ(copied("LVPrompts", 0, 2), "TIME\t1\t'+1\nMSG\t2\t'@A\nMSG\t3\t'-1\n");
        EXPECT_EQ(copied("LVActions", 0, 1), "1\t1\tAUTO\t8\t'=1+1\n2\t2\tAUTO\t9\t\"\"\"B\"\"\"\n");
    });
}

TEST_F(Lists, AreOrderedByDraggingRows) {
    store_.Execute(
        "UPDATE Detail_AUTO_Prompts SET SequenceNo = SequenceNo * 10 WHERE PartID = 2 AND NodeMasterID = 1");
    Edit(1, [] {
        Person::DragRow("LVPrompts", 2, "LVPrompts", 0, Qt::Key_Escape);
        EXPECT_EQ(Rows("LVPrompts"), "10a 10 TIME 1, 20a 20 MSG 2, 30a 30 MSG 3");
        Person::DragRow("LVPrompts", 2, "LVPrompts", 0);
        EXPECT_EQ(Rows("LVPrompts"), "1a 1 TIME 1, 2a 2 MSG 3, 3a 3 MSG 2");
        const auto entries = [] {
            std::string all;
            for (int row = 0; row < Person::Count("LVActions"); ++row) {
                all += Person::Cell("LVActions", row, 1).substr(0, 1);
            }
            return all;
        };
        ASSERT_EQ(entries(), "123456790");
        Person::ClickRow("LVActions", 3);
        Person::ClickRow("LVActions", 1, Qt::ControlModifier);
        Person::DragRow("LVActions", 3, "LVActions", 5);
        EXPECT_EQ(entries(), "135624790");
        EXPECT_EQ(Person::SelectedRows("LVActions"), (std::vector{4, 5}));
        EXPECT_TRUE(Person::Dirty());
        QTreeView* list = Person::List("LVActions");
        Key(list, Qt::Key_Z);
        EXPECT_EQ(entries(), "123456790");
        Key(list, Qt::Key_Y);
        EXPECT_EQ(entries(), "135624790");
        Person::DragRow("LVActions", 8, "LVActions", 0);
        EXPECT_EQ(entries(), "103562479");
        // Neither elsewhere nor while a row is edited.
        Person::DragRow("LVActions", 8, "LVPrompts", 0);
        Person::Press("cmdActionsEdit");
        Person::DragRow("LVActions", 8, "LVActions", 0);
        Person::Press("cmdActionsEdit");
        EXPECT_EQ(entries() + std::to_string(Person::Count("LVPrompts")), "1035624793");
        // By where it stands, and by what it begins with in any column.
        list->selectionModel()->clearSelection();
        list->selectionModel()->setCurrentIndex(list->model()->index(0, 1), QItemSelectionModel::NoUpdate);
        Key(list, Qt::Key_Home, {});
        EXPECT_EQ(Person::SelectedRows("LVActions"), std::vector{0});
        QTest::keyClicks(list, "auto 1");
        EXPECT_EQ(list->currentIndex().row(), 3);
        Person::ClickRow("LVActions", 1);
        Key(list, Qt::Key_X);
        EXPECT_EQ(entries(), "13562479");
        Key(list, Qt::Key_V);
        Key(list, Qt::Key_Z);
        Key(list, Qt::Key_Z);
        EXPECT_EQ(entries(), "103562479");
    });
}

TEST_F(Lists, AreSearched) {
    Edit(1, [] {
        QTreeView* list = Person::List("LVActions");
        Key(list, Qt::Key_F);
        EXPECT_EQ(Person::Focused(), "txtFind");
        const auto expect = [&](const char* text, int key, Qt::KeyboardModifier with, int row,
                                const char* told) {
            auto* box = Person::TextBox("txtFind");
            if (text != nullptr) {
                Person::TypeOver("txtFind", text);
            }
            QTest::keyClick(box, static_cast<Qt::Key>(key), with);
            EXPECT_EQ(list->currentIndex().row(), row) << told;
            EXPECT_EQ(box->accessibleDescription().toStdString(), told);
        };
        expect("aUtO", Qt::Key_Shift, Qt::NoModifier, 0, "1 of 4");
        expect(nullptr, Qt::Key_Return, Qt::NoModifier, 1, "2 of 4");
        expect(nullptr, Qt::Key_Enter, Qt::ShiftModifier, 0, "1 of 4");
        expect(nullptr, Qt::Key_Return, Qt::ShiftModifier, 6, "4 of 4");
        expect(nullptr, Qt::Key_Return, Qt::NoModifier, 0, "1 of 4");
        expect("15", Qt::Key_Return, Qt::NoModifier, 0, "not found"); // but in a hidden column
        expect("voice", Qt::Key_Shift, Qt::NoModifier, 4, "1 of 1");
        Person::Choose("cmbNode", "AUTO 2");
        expect(nullptr, Qt::Key_Shift, Qt::NoModifier, -1, "");
        Person::Choose("cmbNode", "AUTO 1");
        expect("auto", Qt::Key_Shift, Qt::NoModifier, 0, "1 of 4");
        Key(Person::Find<QWidget>("cmdFindPrevious"), Qt::Key_Return, {});
        EXPECT_EQ(list->currentIndex().row(), 6);
        // Escape ends it from wherever the focus is, before it closes the window.
        for (QWidget* place :
             {static_cast<QWidget*>(Person::TextBox("txtFind")), static_cast<QWidget*>(list)}) {
            Key(list, Qt::Key_F);
            Key(place, Qt::Key_Escape, {});
            EXPECT_EQ(Person::Focused(), "LVActions");
            EXPECT_FALSE(Person::Find<QWidget>("FindBar")->isVisible() || Person::Dirty());
        }
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
                    if (action->isEnabled() && !action->isSeparator()) {
                        offered += action->text().toStdString() + ' ';
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
        EXPECT_EQ(choose("LVActions", "Add"), "Add Insert Remove Edit Up Down Quick Find ");
        EXPECT_EQ(choose("LVActions", "Copy"),
                  "Add Insert Remove Edit Up Down Quick Undo Cut Copy Information on MSG 1 Find ");
        EXPECT_EQ(choose("LVActions", "Undo"),
                  "Add Insert Remove Edit Up Down Quick Undo Cut Copy Paste Information on MSG 1 Find ");
        EXPECT_EQ(Person::Count("LVActions"), 9);
        EXPECT_EQ(Person::Window("GUI")->focusWidget(), Person::List("LVActions"));
        EXPECT_EQ(choose("LVActions", "Edit"),
                  "Add Insert Remove Edit Up Down Quick Redo Cut Copy Paste Information on XFER 1 Find ");
        EXPECT_EQ(choose("LVActions", "Edit Off"), "Edit Off Undo Copy Information on XFER 1 Find ");
        EXPECT_EQ(choose("LVExceptions", "Find"), "Edit Default Undo Paste Find ");
        EXPECT_EQ(Person::Window("GUI")->focusWidget(), Person::TextBox("txtFind"));
    });
}

} // namespace
} // namespace KAL_AUTO_Node
