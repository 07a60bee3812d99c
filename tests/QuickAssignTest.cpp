#include "testing/Person.h"

#include <QAbstractItemView>

namespace KAL_AUTO_Node {
namespace {

class QuickAssign : public EditorTest {
  protected:
    // Does one thing with a range of one type and makes sure that this closes the dialog.
    void Assign(const std::string& list, const char* type, int from, int to, const char* button) {
        person_.InQuickAssign("cmdQuick" + list, [&] {
            Person::Choose("cmbNodeTypes", type);
            Person::Choose("cmbFrom", std::to_string(from));
            Person::Choose("cmbTo", std::to_string(to));
            Person::Press(button);
            EXPECT_FALSE(Person::Window("frmQuickAssign")->isVisible());
        });
    }
};

TEST_F(QuickAssign, OffersTypesOfTheListWithTheirNumbers) {
    Edit(12, [&] {
        person_.InQuickAssign("cmdQuickPrompts", [] {
            // Before anything is done here: the window may be changed.
            EXPECT_TRUE(Person::Dirty());
            EXPECT_EQ(Person::Window("frmQuickAssign")->windowTitle(), "Quick Prompts Editor for AUTO 12");
            QComboBox* types = Person::Combo("cmbNodeTypes");
            EXPECT_EQ(types->count(), 2);
            EXPECT_EQ(types->itemText(0) + " " + types->itemText(1), "MSG SPEAK");
            EXPECT_EQ(types->currentText() + Person::Combo("cmbFrom")->currentText(), "MSG1");
            EXPECT_EQ(Person::Combo("cmbFrom")->count(), 250);
        });
        // The numbers are those of the store at that time.
        store_.Execute(
            "UPDATE Node_Type_Max SET Max_Number = 2147483647 WHERE PartitionID = 2 AND NodeType_ID = 0");
        person_.InQuickAssign("cmdQuickActions", [] {
            EXPECT_EQ(Person::Window("frmQuickAssign")->windowTitle(), "Quick Actions Editor for AUTO 12");
            EXPECT_EQ(Person::Combo("cmbNodeTypes")->count(), Person::Combo("cmbActionsNode")->count());
            for (const auto& [type, last] : {std::pair{"M_ON", 32767}, {"SPEAK", 999}, {"DTMF", 30}}) {
                Person::Choose("cmbNodeTypes", type);
                EXPECT_EQ(Person::Combo("cmbFrom")->count(), last) << type;
                EXPECT_EQ(Person::Combo("cmbTo")->count(), last) << type;
                QComboBox* from = Person::Combo("cmbFrom");
                Person::TypeOver("cmbFrom", std::to_string(last));
                from->showPopup();
                EXPECT_TRUE(from->view()->rect().intersects(
                    from->view()->visualRect(from->model()->index(last - 1, 0))));
                from->hidePopup();
            }
        });
    });
}

TEST_F(QuickAssign, AnInputMethodComposesNumbers) {
    Edit(7, [&] {
        person_.InQuickAssign("cmdQuickActions", [] {
            QComboBox* from = Person::Combo("cmbFrom");
            Person::TypeOver("cmbFrom", "1");
            from->lineEdit()->selectAll();
            for (const auto& [composed, finished, left] : {std::tuple{"3", "", ""},
                                                           {"30", "", ""},
                                                           {"", "30", "30"},
                                                           {"x", "", "30"},
                                                           {"", "", "30"}}) {
                QInputMethodEvent event(composed, {});
                event.setCommitString(finished);
                QApplication::sendEvent(from, &event);
                EXPECT_EQ(from->currentText(), left) << composed;
            }
            EXPECT_TRUE(from->lineEdit()->inputMethodHints().testFlag(Qt::ImhDigitsOnly));
        });
    });
}

TEST_F(QuickAssign, AddsARowForEachNumber) {
    // Another program left the placeholder before a prompt.
    store_.Execute("UPDATE Detail_AUTO_Prompts SET NodeTypeID = 999, NodeType = 'EMPTY', NodeNumber = 1"
                   " WHERE PartID = 2 AND NodeMasterID = 5 AND SequenceNo = 1;"
                   "INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID,"
                   " NodeType, NodeNumber) VALUES (1, 2, 5, 2, 0, 'MSG', 9)");
    Edit(5, [&] {
        Assign("Prompts", "MSG", 5, 3, "cmdAdd");
        ASSERT_EQ(Person::Cell("LVPrompts", 0, 2), "EMPTY");
        Person::Press("cmdPromptsAdd");
        EXPECT_EQ(Person::Count("LVPrompts"), 2);
        person_.InQuickAssign("cmdQuickPrompts", [] {
            Person::TypeOver("cmbFrom", "3");
            Person::TypeOver("cmbTo", "3");
            QTest::keyClick(Person::Combo("cmbTo"), Qt::Key_Return);
            EXPECT_FALSE(Person::Window("frmQuickAssign")->isVisible());
        });
        EXPECT_EQ(Person::Rows("LVPrompts").size(), 3U);
        EXPECT_EQ(Person::Key("LVPrompts", 0) + Person::Row("LVPrompts", 0).substr(0, 9), "1a1|1|MSG 9");
        EXPECT_EQ(Person::Key("LVPrompts", 2) + Person::Row("LVPrompts", 2), "3a3|3|MSG 3||MSG|0|3");
    });
    // The placeholder goes where rows come.
    Edit(7, [&] {
        Assign("Prompts", "MSG", 5, 3, "cmdAdd");
        EXPECT_EQ(Person::Cell("LVPrompts", 0, 2), "EMPTY");
        Assign("Prompts", "MSG", 4, 5, "cmdAdd");
        EXPECT_EQ(Person::Cell("LVPrompts", 0, 2) + Person::Cell("LVPrompts", 1, 2), "MSG 4MSG 5");
    });
}

TEST_F(QuickAssign, RemovesByNameAndNumber) {
    // Two types whose names differ in case only, and numbers that sort otherwise as texts.
    store_.Execute(
        "UPDATE SR_Node_Type_Names SET English_Name = 'msg' WHERE ID = 817;"
        "UPDATE SR_Node_Type_Names SET English_Name = 'nothing' WHERE ID = 999;"
        "INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType,"
        " NodeNumber) VALUES (1, 2, 2, 1, 0, 'MSG', 10), (1, 2, 2, 2, 817, 'msg', 4),"
        " (1, 2, 2, 3, 0, 'MSG', 2), (1, 2, 2, 4, 0, 'MSG', 1)");
    Edit(2, [&] {
        Assign("Prompts", "MSG", 10, 2, "cmdRemove");
        Person::ClickRow("LVPrompts", 1);
        Person::ClickRow("LVPrompts", 3, Qt::ControlModifier);
        Assign("Prompts", "MSG", 2, 10, "cmdRemove");
        EXPECT_EQ(Person::SelectedRows("LVPrompts"), (std::vector{0, 1}));
        EXPECT_EQ(Person::List("LVPrompts")->currentIndex().row(), 1);
        EXPECT_EQ(Person::Rows("LVPrompts"),
                  (Texts{"1a: 1|1|msg 4||msg|817|4", "2a: 2|2|MSG 1|Goodbye|MSG|0|1"}));
        Person::ClickRow("LVPrompts", 0);
        Person::Press("cmdPromptsRemove");
        Assign("Prompts", "MSG", 1, 250, "cmdRemove");
        // The placeholder goes by its own name here.
        EXPECT_EQ(Person::Rows("LVPrompts"), Texts{"1a: 1|1|EMPTY||EMPTY|999|1"});
        EXPECT_EQ(Person::Combo("cmbPromptsNode")->width(), 111);
    });
}

TEST_F(QuickAssign, NothingIsDoneWithoutNumbers) {
    store_.Execute("DELETE FROM Node_Type_Max WHERE PartitionID = 2 AND NodeType_ID = 5;"
                   "UPDATE Node_Type_Max SET Max_Number = 1 WHERE PartitionID = 2 AND NodeType_ID = 4");
    Edit(1, [&] {
        person_.InQuickAssign("cmdQuickActions", [] {
            for (const auto& [type, numbered] :
                 {std::pair{"EMPTY", false}, {"MSG", true}, {"XFER", true}, {"HOLD", false}}) {
                Person::Choose("cmbNodeTypes", type);
                EXPECT_EQ(Person::Button("cmdAdd")->isEnabled(), numbered) << type;
                EXPECT_EQ(Person::Button("cmdRemove")->isEnabled(), numbered) << type;
            }
            Person::TypeOver("cmbFrom", "1");
            QTest::keyClick(Person::Combo("cmbFrom"), Qt::Key_Return);
            Person::Press("cmdClose");
        });
        EXPECT_EQ(Person::Count("LVActions"), 9);
    });

    // What fails closes it before it is told.
    EXPECT_TRUE(person_.Edit(1, [&] {
        person_.InQuickAssign("cmdQuickActions", [&] {
            store_.Execute("ALTER TABLE Node_Type_Max RENAME TO Away");
            Person::Choose("cmbNodeTypes", "XFER");
            EXPECT_FALSE(Person::Window("frmQuickAssign")->isVisible());
            store_.Execute("ALTER TABLE Away RENAME TO Node_Type_Max");
        });
    }));
    const auto boxes = person_.Boxes();
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_TRUE(boxes[0].text.starts_with("Source: SQLite - cmdQuickActions_Click ")) << boxes[0].text;

    store_.Execute("DELETE FROM SR_Node_Type_can_contain_Node_Type"
                   " WHERE Set_ID = 6 OR Set_ID = 7 AND Child_Node_Type_ID IN (0, 816)");
    const Box refused =
        Information("Please check the \"Max Number of each Node\" Section in Partition Settings.");
    EXPECT_TRUE(person_.Edit(1, [] {
        Person::Press("cmdQuickPrompts");
        Person::Press("cmdQuickActions");
        EXPECT_FALSE(Person::Dirty());
    }));
    EXPECT_EQ(person_.Boxes(), (std::vector{refused, refused}));
}

} // namespace
} // namespace KAL_AUTO_Node
