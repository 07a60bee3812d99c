#include "Person.h"
#include "TestStore.h"

namespace KAL_AUTO_Node {
namespace {

using Strings = std::vector<std::string>;

Strings Entries(const char* combo) {
    Strings entries;
    for (int i = 0; i < Person::Combo(combo)->count(); ++i) {
        entries.push_back(Person::Combo(combo)->itemText(i).toStdString());
    }
    return entries;
}

// The rows with their keys.
Strings Rows(const char* list) {
    Strings rows;
    for (int row = 0; row < Person::Count(list); ++row) {
        rows.push_back(Person::Key(list, row) + " " + Person::Row(list, row));
    }
    return rows;
}

void TypeOver(const char* box, const char* text) {
    Person::Combo(box)->setFocus();
    QTest::keyClick(Person::Combo(box), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(Person::Combo(box), QString::fromLatin1(text));
}

class QuickAssign : public testing::Test {
  protected:
    void Edit(int node, const std::function<void()>& deeds, const std::vector<Box>& boxes = {}) {
        EXPECT_TRUE(person_.Edit(node, deeds));
        EXPECT_EQ(person_.Boxes(), boxes);
    }

    // Does one thing with a range of one type and makes sure that this closes the dialog.
    void Assign(const char* opener, const char* type, const char* from, const char* to, const char* button) {
        bool shown = false;
        person_.InQuickAssign(opener, [&] {
            shown = true;
            Person::Choose("cmbNodeTypes", type);
            Person::Choose("cmbFrom", from);
            Person::Choose("cmbTo", to);
            Person::Press(button);
            EXPECT_FALSE(Person::Window("frmQuickAssign")->isVisible());
        });
        EXPECT_TRUE(shown);
    }

    TestStore store_;
    Person person_;
};

TEST_F(QuickAssign, OffersTypesOfTheListWithTheirNumbers) {
    Edit(12, [&] {
        person_.InQuickAssign("cmdQuickPrompts", [] {
            // Before anything is done here: the window may be changed.
            EXPECT_TRUE(Person::Dirty());
            EXPECT_EQ(Person::Window("frmQuickAssign")->windowTitle(), "Quick Prompts Editor for AUTO 12");
            EXPECT_EQ(Entries("cmbNodeTypes"), (Strings{"MSG", "SPEAK"}));
            EXPECT_EQ(Person::Combo("cmbNodeTypes")->itemData(1).toInt(), 816);
            EXPECT_EQ(Person::Text("cmbNodeTypes") + Person::Text("cmbFrom") + Person::Text("cmbTo"),
                      "MSG11");
            EXPECT_EQ(Person::Combo("cmbFrom")->count(), 250);
            Person::Choose("cmbNodeTypes", "SPEAK");
            EXPECT_EQ(Person::Combo("cmbFrom")->count(), 999);
            EXPECT_EQ(Person::Combo("cmbTo")->itemText(998), "999");
        });
        // The numbers are those of the store at that time.
        store_.Execute("UPDATE Node_Type_Max SET Max_Number = 300 WHERE PartitionID = 2 AND NodeType_ID = 0");
        person_.InQuickAssign("cmdQuickActions", [] {
            EXPECT_EQ(Person::Window("frmQuickAssign")->windowTitle(), "Quick Actions Editor for AUTO 12");
            EXPECT_EQ(Entries("cmbNodeTypes"), Entries("cmbActionsNode"));
            EXPECT_EQ(Person::Combo("cmbNodeTypes")->count(), 16);
            for (const auto& [type, last] :
                 {std::pair{"MSG", 300}, {"M_ON", 300}, {"M_OFF", 300}, {"SPEAK", 999}, {"DTMF", 30}}) {
                Person::Choose("cmbNodeTypes", type);
                EXPECT_EQ(Person::Combo("cmbFrom")->count(), last) << type;
                EXPECT_EQ(Person::Combo("cmbTo")->count(), last) << type;
            }
            for (const char* box : {"cmbFrom", "cmbTo"}) {
                for (const auto& [typed, left] :
                     {std::pair{"250", "25"}, {"x", "1"}, {"0", "1"}, {"7a", "7"}}) {
                    TypeOver(box, typed);
                    EXPECT_EQ(Person::Text(box), left) << typed;
                }
            }
        });
        EXPECT_EQ(Person::Count("LVPrompts"), 3);
        EXPECT_EQ(Person::Count("LVActions"), 6);
    });
}

TEST_F(QuickAssign, AddsARowForEachNumber) {
    Edit(7, [&] {
        Assign("cmdQuickPrompts", "MSG", "5", "3", "cmdAdd");
        EXPECT_EQ(Rows("LVPrompts"), Strings{"1a 1|1|EMPTY||EMPTY|999|1"});
        Assign("cmdQuickPrompts", "MSG", "3", "5", "cmdAdd");
        Assign("cmdQuickPrompts", "SPEAK", "999", "999", "cmdAdd");
        EXPECT_EQ(Rows("LVPrompts"), (Strings{"1a 1|1|MSG 3||MSG|0|3", "2a 2|2|MSG 4||MSG|0|4",
                                              "3a 3|3|MSG 5||MSG|0|5", "4a 4|4|SPEAK 999||SPEAK|816|999"}));
        Person::Press("cmdActionsAdd");
        Assign("cmdQuickActions", "M_ON", "9", "10", "cmdAdd");
        EXPECT_EQ(Rows("LVActions"),
                  (Strings{"1a 1|1-1|MSG 1||MSG|0|1|1|1", "2a 2|0-100|M_ON 9||M_ON|817|9|0|100",
                           "3a 3|0-100|M_ON 10||M_ON|817|10|0|100"}));
    });
}

TEST_F(QuickAssign, RemovesByNameAndNumber) {
    // Two types whose names differ in case only, and numbers that sort otherwise as texts.
    store_.Execute(
        "UPDATE SR_Node_Type_Names SET English_Name = 'msg' WHERE ID = 817;"
        "UPDATE SR_Node_Type_Names SET English_Name = 'nothing' WHERE ID = 999;"
        "INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType,"
        " NodeNumber) VALUES (1, 2, 2, 1, 0, 'MSG', 10), (1, 2, 2, 2, 817, 'msg', 4),"
        " (1, 2, 2, 3, 0, 'MSG', 2), (1, 2, 2, 4, 0, 'MSG', 1), (1, 2, 2, 5, 0, 'MSG', 11)");
    Edit(2, [&] {
        Assign("cmdQuickPrompts", "MSG", "10", "2", "cmdRemove");
        EXPECT_EQ(Person::Count("LVPrompts"), 5);
        Assign("cmdQuickPrompts", "MSG", "2", "10", "cmdRemove");
        EXPECT_EQ(Rows("LVPrompts"), (Strings{"1a 1|1|msg 4||msg|817|4", "2a 2|2|MSG 1|Goodbye|MSG|0|1",
                                              "3a 3|3|MSG 11|Opening hours, Zürich|MSG|0|11"}));
        Person::ClickRow("LVPrompts", 0);
        Person::Press("cmdPromptsRemove");
        Assign("cmdQuickPrompts", "MSG", "1", "250", "cmdRemove");
        // The placeholder goes by its own name here.
        EXPECT_EQ(Rows("LVPrompts"), Strings{"1a 1|1|EMPTY||EMPTY|999|1"});
        EXPECT_EQ(Person::Combo("cmbPromptsNode")->width(), 111);
    });
    Edit(14, [&] {
        Assign("cmdQuickActions", "MSG", "1", "250", "cmdRemove");
        EXPECT_EQ(Rows("LVActions"), (Strings{"1a 1|2-2|XFER 10|Human resources|XFER|4|10|2|2",
                                              "2a 2|3-3|EMPTY||nothing|999|1|3|3"}));
    });
    Edit(10, [&] {
        for (const auto& [type, last] :
             {std::pair{"DATE", "1"}, {"PAAS", "8"}, {"MSG", "250"}, {"VOX", "10"}, {"XFER", "12"}}) {
            Assign("cmdQuickActions", type, "1", last, "cmdRemove");
        }
        EXPECT_EQ(Person::Count("LVActions"), 0);
    });
}

TEST_F(QuickAssign, NothingIsDoneWithoutNumbers) {
    store_.Execute("DELETE FROM Node_Type_Max WHERE PartitionID = 2 AND NodeType_ID = 5");
    Edit(1, [&] {
        person_.InQuickAssign("cmdQuickActions", [] {
            for (const auto& [type, numbered] :
                 {std::pair{"HOLD", false}, {"MSG", true}, {"EMPTY", false}, {"SPEAK", true}}) {
                Person::Choose("cmbNodeTypes", type);
                EXPECT_EQ(Person::Button("cmdAdd")->isEnabled(), numbered) << type;
                EXPECT_EQ(Person::Button("cmdRemove")->isEnabled(), numbered) << type;
            }
            Person::Choose("cmbNodeTypes", "HOLD");
            TypeOver("cmbFrom", "1");
            QTest::keyClick(Person::Combo("cmbFrom"), Qt::Key_Return);
            Person::Press("cmdClose");
        });
        EXPECT_EQ(Person::Count("LVActions"), 9);
    });

    store_.Execute("DELETE FROM SR_Node_Type_can_contain_Node_Type"
                   " WHERE Set_ID = 6 OR Set_ID = 7 AND Child_Node_Type_ID IN (0, 816)");
    const Box refused =
        Information("Please check the \"Max Number of each Node\" Section in Partition Settings.");
    Edit(1,
         [] {
             Person::Press("cmdQuickPrompts");
             Person::Press("cmdQuickActions");
             EXPECT_FALSE(Person::Dirty());
         },
         {refused, refused});
}

} // namespace
} // namespace KAL_AUTO_Node
