#include "Person.h"

#include <QAbstractItemView>
#include <QHeaderView>

namespace KAL_AUTO_Node {
namespace {

const std::string LowBox = "txtActionsDTMFRangeLow";
const std::string HighBox = "txtActionsDTMFRangeHigh";

Box Unavailable(const std::string& type) {
    return Information("Please check the \"Max Number of each Node\" Section for " + type +
                       " Node in Partition Settings.");
}

// The editors of an action, and no others, are open and sit on it.
void ExpectEditorsOver(int row) {
    const QTreeView* view = Person::List("LVActions");
    std::set<std::string> editors;
    for (const auto& [editor, column, offset, width] : {std::tuple{"cmbActionsNode", 2, 0, 65},
                                                        {"cmbActionsNumber", 2, 65, 46},
                                                        {LowBox.c_str(), 1, 0, 50},
                                                        {"txtActionsDash", 1, 50, 6},
                                                        {HighBox.c_str(), 1, 56, 50}}) {
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

using Lists = EditorTest;

TEST_F(Lists, EditorsFollowTheirRow) {
    Edit(4, [] {
        Person::Press("cmdActionsEdit");
        Person::ClickRow("LVActions", 2);
        ExpectEditorsOver(2);
        const auto resize = [](int height) {
            Person::Window("GUI")->resize(1250, height);
            QCoreApplication::processEvents();
        };
        resize(800);
        ExpectEditorsOver(2);
        QTreeView* list = Person::List("LVActions");
        list->header()->resizeSection(1, 150);
        ExpectEditorsOver(2);
        // A click gives the columns their widths back.
        Person::ClickRow("LVActions", 50);
        EXPECT_EQ(list->columnWidth(1), 106);
        ExpectEditorsOver(50);
        // Those of a row that is half out of sight would float over something else.
        const QRect row = list->visualRect(list->model()->index(50, 1));
        resize(800 - (list->viewport()->height() - row.center().y()));
        EXPECT_TRUE(list->viewport()->rect().intersects(row));
        EXPECT_TRUE(Person::OpenEditors().empty());
    });
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
    };
    Edit(1, deeds, {question});
}

TEST_F(Lists, RangeBoxesTakeDigitsOnly) {
    Edit(1, [] {
        Person::Press("cmdActionsEdit");
        Person::ClickRow("LVActions", 5);
        Person::TypeOver(LowBox, "1*2");
        EXPECT_EQ(Person::Row("LVActions", 5), "6|12-660|CMD 1||CMD|1|1|12|660");
        // Low may exceed high, and leading zeros count.
        Person::TypeOver(HighBox, "a0 0#7");
        EXPECT_EQ(Person::Row("LVActions", 5), "6|12-007|CMD 1||CMD|1|1|12|007");
        for (const auto& [box, other, stored] :
             {std::tuple{LowBox, HighBox, "12"}, {HighBox, LowBox, "007"}}) {
            Person::TypeOver(box, "*");
            EXPECT_EQ(Person::TextBox(box)->text(), "");
            EXPECT_EQ(Person::Cell("LVActions", 5, 1), "12-007");
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
        Person::ClickRow("LVActions", 0);
        EXPECT_EQ(Person::Row("LVActions", 5), "6|12-007|CMD 1||CMD|1|1|12|007");
        EXPECT_EQ(Person::Row("LVActions", 0), "1|1-1|AUTO 8||AUTO|9|8|1|1");
    });
}

TEST_F(Lists, ATypeWithoutNumbersIsNotEdited) {
    // Without messages an action of their two other types is told under the name of the message type. A
    // prompt of such a type is rewritten before its number turns out to be none.
    store_.Execute("UPDATE Node_Type_Max SET Max_Number = 0 WHERE PartitionID = 2 AND NodeType_ID = 0");
    Edit(12,
         [] {
             Person::Press("cmdActionsEdit");
             for (const int row : {0, 3, 4}) {
                 const std::string before = Person::Row("LVActions", row);
                 Person::ClickRow("LVActions", row);
                 EXPECT_EQ(Person::Row("LVActions", row), before);
                 EXPECT_TRUE(Person::OpenEditors().empty());
             }
             Person::Press("cmdPromptsEdit");
             Person::ClickRow("LVPrompts", 0);
             EXPECT_EQ(Person::Row("LVPrompts", 0), "1|1|M_ON 1||M_ON|817|1");
             EXPECT_TRUE(Person::OpenEditors().empty());
         },
         {Unavailable("MSG"), Unavailable("MSG"), Unavailable("MSG"), Unavailable("M_ON")});

    store_.Execute("DELETE FROM SR_Node_Type_can_contain_Node_Type WHERE Set_ID = 6");
    const Box noTypes = Information("Please check the \"Max Number of each Node\" in Partition Settings.");
    Edit(1,
         [] {
             Person::Press("cmdActionsAdd");
             Person::Press("cmdActionsInsert");
             EXPECT_EQ(Person::Count("LVActions"), 9);
             EXPECT_FALSE(Person::Dirty());
         },
         {noTypes, noTypes});
}

} // namespace
} // namespace KAL_AUTO_Node
