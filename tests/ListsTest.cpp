#include "Person.h"

#include <QAbstractItemView>
#include <QHeaderView>

namespace KAL_AUTO_Node {
namespace {

using Strings = std::vector<std::string>;

// The names of a list's controls; each exception has editors of its own.
struct Names {
    std::string kind;
    std::string slot = kind;
    std::string list = "LV" + kind;
    std::string edit = "cmd" + kind + "Edit";
    std::string node = "cmb" + slot + "Node";
    std::string number = "cmb" + slot + "Number";
};

const Names Prompts{"Prompts"};
const Names Actions{"Actions"};
const Names Timeout{"Exceptions", "ExceptionsTimeout"};

const std::string LowBox = "txtActionsDTMFRangeLow";
const std::string Dash = "txtActionsDash";
const std::string HighBox = "txtActionsDTMFRangeHigh";

const std::set<std::string> NoEditors;

// For whatever has the focus.
void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

// What the rows refer to, after making sure that keys and positions run from 1.
Strings Targets(const std::string& list) {
    Strings targets;
    for (int row = 0; row < Person::Count(list); ++row) {
        const std::string position = std::to_string(row + 1);
        EXPECT_EQ(Person::Key(list, row), position + "a");
        EXPECT_EQ(Person::Cell(list, row, 0), position);
        if (list == Prompts.list) {
            EXPECT_EQ(Person::Cell(list, row, 1), position);
        }
        targets.push_back(Person::Cell(list, row, 2));
    }
    return targets;
}

Box Unavailable(const std::string& type) {
    return Information("Please check the \"Max Number of each Node\" Section for " + type +
                       " Node in Partition Settings.");
}

// The editors of a row, and no others, are open and sit on it.
void ExpectEditorsOver(const Names& names, int row, bool numbered = true) {
    std::vector<std::tuple<std::string, int, int, int>> places{{names.node, 2, 0, numbered ? 65 : 111}};
    if (numbered) {
        places.emplace_back(names.number, 2, 65, 46);
    }
    if (names.kind == Actions.kind) {
        places.insert(places.end(), {{LowBox, 1, 0, 50}, {Dash, 1, 50, 6}, {HighBox, 1, 56, 50}});
    }
    const QTreeView* view = Person::List(names.list);
    std::set<std::string> editors;
    for (const auto& [editor, column, offset, width] : places) {
        const QRect cell = view->visualRect(view->model()->index(row, column));
        const auto* control = Person::Find<QWidget>(editor);
        EXPECT_EQ(control->mapToGlobal(QPoint()),
                  view->viewport()->mapToGlobal(cell.topLeft() + QPoint(offset, 0)))
            << editor << ", row " << row;
        EXPECT_EQ(control->size(), QSize(width, cell.height())) << editor;
        editors.insert(editor);
    }
    EXPECT_EQ(Person::OpenEditors(), editors);
}

class Lists : public EditorTest {
  protected:
    void SetMax(int type, int max) const {
        store_.Execute("UPDATE Node_Type_Max SET Max_Number = " + std::to_string(max) +
                       " WHERE PartitionID = 2 AND NodeType_ID = " + std::to_string(type));
    }
};

TEST_F(Lists, EditorsFollowTheirRow) {
    Edit(4, [] {
        Person::Press(Actions.edit);
        Person::ClickRow(Actions.list, 2);
        ExpectEditorsOver(Actions, 2);
        Person::Window("GUI")->resize(1250, 800);
        QCoreApplication::processEvents();
        ExpectEditorsOver(Actions, 2);
        Person::List(Actions.list)->header()->resizeSection(1, 150);
        ExpectEditorsOver(Actions, 2);
        // A click gives the columns their widths back.
        Person::ClickRow(Actions.list, 50);
        EXPECT_EQ(Person::List(Actions.list)->columnWidth(1), 106);
        ExpectEditorsOver(Actions, 50);
        // Those of a row that is no longer in sight would float over something else.
        Person::Window("GUI")->resize(1250, Person::Window("GUI")->minimumSizeHint().height());
        QCoreApplication::processEvents();
        EXPECT_EQ(Person::OpenEditors(), NoEditors);
    });
}

TEST_F(Lists, VacatingAsksFirst) {
    person_.WillAnswer({QMessageBox::No, QMessageBox::Yes});
    const Box question{"Confirmation", "Do you want to vacate Prompts Table?", QMessageBox::Question,
                       QMessageBox::Yes | QMessageBox::No};
    Edit(1,
         [] {
             Person::Press(Prompts.edit);
             Person::ClickRow(Prompts.list, 1);
             Person::Choose(Prompts.node, "EMPTY");
             EXPECT_EQ(Targets(Prompts.list), (Strings{"TIME 1", "MSG 2", "MSG 3"}));
             EXPECT_EQ(Person::Text(Prompts.node) + Person::Text(Prompts.number), "MSG2");
             // A wheel that scrolls nothing hides nothing, and a key held down since before changes nothing.
             Person::Scroll(Prompts.list);
             QKeyEvent held(QEvent::KeyPress, Qt::Key_Down, {}, {}, true);
             QApplication::sendEvent(Person::Combo(Prompts.node), &held);
             // The Escape that closes a pop-up may come to the window, too.
             Person::Combo(Prompts.node)->showPopup();
             QTest::keyClick(Person::Combo(Prompts.node)->view(), Qt::Key_Escape);
             for (QWidget* receiver :
                  {static_cast<QWidget*>(Person::Combo(Prompts.node)), Person::Window("GUI")}) {
                 QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
                 QApplication::sendEvent(receiver, &escape);
             }
             EXPECT_EQ(Person::Text(Prompts.node) + Person::Text(Prompts.number), "MSG2");
             ExpectEditorsOver(Prompts, 1);

             Person::Choose(Prompts.node, "EMPTY");
             EXPECT_EQ(Targets(Prompts.list), Strings{"EMPTY"});
             EXPECT_EQ(Person::Row(Prompts.list, 0), "1|1|EMPTY||EMPTY|999|1");
             EXPECT_EQ(Person::OpenEditors(), NoEditors);
             // The placeholder itself is edited without a question.
             Person::ClickRow(Prompts.list, 0);
             ExpectEditorsOver(Prompts, 0, false);
         },
         {question, question});
}

TEST_F(Lists, RangeBoxesTakeDigitsOnly) {
    Edit(1, [] {
        Person::Press(Actions.edit);
        Person::ClickRow(Actions.list, 5);
        Person::TypeOver(LowBox, "1*2");
        EXPECT_EQ(Person::Row(Actions.list, 5), "6|12-660|CMD 1||CMD|1|1|12|660");
        // Low may exceed high, and leading zeros count.
        Person::TypeOver(HighBox, "a0 0#7");
        EXPECT_EQ(Person::Row(Actions.list, 5), "6|12-007|CMD 1||CMD|1|1|12|007");
        for (const auto& [box, other, stored] :
             {std::tuple{LowBox, HighBox, "12"}, {HighBox, LowBox, "007"}}) {
            Person::TypeOver(box, "*");
            EXPECT_EQ(Person::TextBox(box)->text(), "");
            EXPECT_EQ(Person::Cell(Actions.list, 5, 1), "12-007");
            Person::TextBox(other)->setFocus();
            EXPECT_EQ(Person::TextBox(box)->text(), stored);
            EXPECT_EQ(Person::TextBox(other)->selectedText(), Person::TextBox(other)->text());
        }
        // What comes to the front and goes again does not select, so that what is typed goes on.
        for (const Qt::FocusReason reason :
             {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason, Qt::MenuBarFocusReason}) {
            Person::TextBox(LowBox)->end(false);
            for (const QEvent::Type type : {QEvent::FocusOut, QEvent::FocusIn}) {
                QFocusEvent focus(type, reason);
                QApplication::sendEvent(Person::TextBox(LowBox), &focus);
            }
            EXPECT_EQ(Person::TextBox(LowBox)->selectedText(), "") << reason;
        }
        // Emptied and left for another row: neither row changes.
        Person::TypeOver(LowBox, "*");
        Person::ClickRow(Actions.list, 0);
        EXPECT_EQ(Person::Row(Actions.list, 5), "6|12-007|CMD 1||CMD|1|1|12|007");
        EXPECT_EQ(Person::Row(Actions.list, 0), "1|1-1|AUTO 8||AUTO|9|8|1|1");
    });
}

TEST_F(Lists, ATypeWithoutNumbersIsNotEdited) {
    // Without messages an action of their two other types is told under the name of the message type. A
    // prompt of such a type is rewritten before its number turns out to be none.
    SetMax(0, 0);
    Edit(12,
         [] {
             Person::Press(Actions.edit);
             for (const int row : {0, 3, 4}) {
                 const std::string before = Person::Row(Actions.list, row);
                 Person::ClickRow(Actions.list, row);
                 EXPECT_EQ(Person::Row(Actions.list, row), before);
                 EXPECT_EQ(Person::OpenEditors(), NoEditors);
             }
             Person::Press(Prompts.edit);
             Person::ClickRow(Prompts.list, 0);
             EXPECT_EQ(Person::Row(Prompts.list, 0), "1|1|M_ON 1||M_ON|817|1");
             EXPECT_EQ(Person::OpenEditors(), NoEditors);
         },
         {Unavailable("MSG"), Unavailable("MSG"), Unavailable("MSG"), Unavailable("M_ON")});

    store_.Execute("DELETE FROM SR_Node_Type_can_contain_Node_Type WHERE Set_ID = 6");
    const Box noTypes = Information("Please check the \"Max Number of each Node\" in Partition Settings.");
    Edit(1,
         [] {
             Person::Press("cmdActionsAdd");
             Person::Press("cmdActionsInsert");
             EXPECT_EQ(Person::Count(Actions.list), 9);
             EXPECT_FALSE(Person::Dirty());
         },
         {noTypes, noTypes});
}

TEST_F(Lists, AreEditedFromTheKeyboardAlone) {
    Edit(1, [] {
        Person::ClickRow(Actions.list, 1);
        for (int presses = 0; presses < 40 && Person::Focused() != Actions.edit; ++presses) {
            Key(Qt::Key_Tab);
        }
        Key(Qt::Key_Space);
        Strings stops;
        for (int stop = 0; stop < 4; ++stop) {
            stops.push_back(Person::Focused());
            Key(Qt::Key_Tab);
        }
        EXPECT_EQ(stops, (Strings{LowBox, HighBox, Actions.node, Actions.number}));
        Key(Qt::Key_Tab, Qt::ShiftModifier);
        QTest::keyClicks(QApplication::focusWidget(), "4");
        Key(Qt::Key_Tab, Qt::ShiftModifier);
        // A letter chooses a type.
        Key(Qt::Key_X);
        Key(Qt::Key_Tab, Qt::ShiftModifier);
        QTest::keyClicks(QApplication::focusWidget(), "29");
        // Enter accepts a row, Escape takes it back: both close its editors, not the window.
        Key(Qt::Key_Return);
        EXPECT_EQ(Person::Row(Actions.list, 1), "2|2-29|XFER 4||XFER|4|4|2|29");
        EXPECT_EQ(Person::Focused(), Actions.list);
        Key(Qt::Key_Down);
        ExpectEditorsOver(Actions, 2);
        QTest::keyClicks(QApplication::focusWidget(), "5");
        Key(Qt::Key_Escape);
        EXPECT_EQ(Person::Row(Actions.list, 2), "3|3-3|MSG 10|Opening hours|MSG|0|10|3|3");
        EXPECT_EQ(Person::Focused(), Actions.list);
        EXPECT_EQ(Person::OpenEditors(), NoEditors);
        Key(Qt::Key_Enter);
        ExpectEditorsOver(Actions, 2);
        Person::List(Actions.list)->setFocus();
        Key(Qt::Key_Escape);
        EXPECT_EQ(Person::Caption(Actions.edit), "Edit");
        // Enter presses the button that has the focus, not the default one.
        Person::Button(Actions.edit)->setFocus();
        Key(Qt::Key_Return);
        ASSERT_TRUE(Person::Window("GUI")->isVisible());
        EXPECT_EQ(Person::Caption(Actions.edit), "Edit Off");
    });
}

} // namespace
} // namespace KAL_AUTO_Node
