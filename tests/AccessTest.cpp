#include "Person.h"

#include <QAccessible>

#include <map>

namespace KAL_AUTO_Node {
namespace {

class Access : public EditorTest {};

// For whatever has the focus.
void Press(int key, Qt::KeyboardModifiers with = Qt::NoModifier) {
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), with);
}

void Type(const char* text) { QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(text)); }

TEST_F(Access, RowsAreEditedFromTheKeyboardAlone) {
    Edit(1, [] {
        Person::ClickRow("LVActions", 1);
        for (int presses = 0; presses < 40 && Person::Focused() != "cmdActionsEdit"; ++presses) {
            Press(Qt::Key_Tab);
        }
        Press(Qt::Key_Space);
        std::string stops;
        for (int stop = 0; stop < 4; ++stop) {
            stops += Person::Focused() + ' ';
            Press(Qt::Key_Tab);
        }
        EXPECT_EQ(stops, "txtActionsDTMFRangeLow txtActionsDTMFRangeHigh cmbActionsNode cmbActionsNumber ");
        Press(Qt::Key_Tab, Qt::ShiftModifier);
        Type("4");
        Press(Qt::Key_Tab, Qt::ShiftModifier);
        // A letter chooses a type.
        Press(Qt::Key_X);
        Press(Qt::Key_Tab, Qt::ShiftModifier);
        Type("29");
        // Enter accepts a row, Escape takes it back: both close its editors, not the window.
        Press(Qt::Key_Return);
        EXPECT_EQ(Person::Row("LVActions", 1), "2|2-29|XFER 4||XFER|4|4|2|29");
        EXPECT_EQ(Person::Focused(), "LVActions");
        Press(Qt::Key_Down);
        EXPECT_EQ(Person::Focused(), "txtActionsDTMFRangeLow");
        Type("5");
        EXPECT_EQ(Person::Cell("LVActions", 2, 1), "5-3");
        Press(Qt::Key_Escape);
        EXPECT_EQ(Person::Row("LVActions", 2), "3|3-3|MSG 10|Opening hours|MSG|0|10|3|3");
        EXPECT_EQ(Person::Focused(), "LVActions");
        EXPECT_TRUE(Person::OpenEditors().empty());
        Press(Qt::Key_Escape);
        EXPECT_EQ(Person::Caption("cmdActionsEdit"), "Edit");
        // Enter presses the button that has the focus, not the default one.
        Person::Button("cmdActionsEdit")->setFocus();
        Press(Qt::Key_Return);
        ASSERT_TRUE(Person::Window("GUI")->isVisible());
        EXPECT_EQ(Person::Caption("cmdActionsEdit"), "Edit Off");
    });
}

// From going there to what is stored.
TEST_F(Access, EachListIsChangedAndSavedFromTheKeyboardAlone) {
    Edit(8, [&] {
        const auto keys = [](const char* text, std::initializer_list<int> before,
                             std::initializer_list<int> after) {
            for (const int key : before) {
                Press(key);
            }
            Type(text);
            for (const int key : after) {
                Press(key);
            }
        };
        Press(Qt::Key_1, Qt::AltModifier);
        Press(Qt::Key_A, Qt::AltModifier);
        Press(Qt::Key_1, Qt::AltModifier);
        keys("T", {Qt::Key_Return}, {Qt::Key_Tab});
        keys("4", {}, {Qt::Key_Return, Qt::Key_Escape});
        Press(Qt::Key_U, Qt::AltModifier);
        Press(Qt::Key_2, Qt::AltModifier);
        Press(Qt::Key_End, Qt::ControlModifier);
        keys("70", {Qt::Key_F2}, {Qt::Key_Tab});
        keys("79", {}, {Qt::Key_Tab, Qt::Key_X, Qt::Key_Tab});
        keys("3", {}, {Qt::Key_Return, Qt::Key_Escape});
        Press(Qt::Key_3, Qt::AltModifier);
        keys("M", {Qt::Key_Down, Qt::Key_Return}, {Qt::Key_Tab});
        keys("9", {}, {Qt::Key_Return, Qt::Key_Escape});
        Press(Qt::Key_S, Qt::ControlModifier);
        EXPECT_FALSE(Person::Dirty());
    });
    const auto stored = [&](const std::string& columns, const std::string& from) {
        return store_.Rows("SELECT " + columns + " FROM " + from + " = 8 AND PartID = 2 ORDER BY 1");
    };
    using Rows = std::vector<std::string>;
    EXPECT_EQ(stored("SequenceNo, NodeType, NodeNumber", "Detail_AUTO_Prompts WHERE NodeMasterID"),
              (Rows{"1|MSG|21", "2|TIME|4", "3|MSG|23"}));
    EXPECT_EQ(stored("SequenceNo, DTMFRangeLow, DTMFRangeHigh, NodeType, NodeNumber",
                     "Detail_AUTO_Action WHERE NodeMasterID")
                  .back(),
              "8|70|79|XFER|3");
    EXPECT_EQ(stored("InvalidNodeType, InvalidNodeNumber", "Node_AUTO WHERE NodeNumber"), Rows{"MSG|9"});
}

TEST_F(Access, KeysThatCaptionsDoNotShowActOnTheListUsedLast) {
    Edit(8, [] {
        for (const auto& [key, list] : {std::pair{Qt::Key_1, "Prompts"}, {Qt::Key_2, "Actions"}}) {
            Press(key, Qt::AltModifier);
            const std::string name = std::string("LV") + list;
            EXPECT_EQ(Person::Focused(), name);
            const int rows = Person::Count(name);
            for (const auto& [deed, expected] : {std::pair{Qt::Key_A, rows + 1},
                                                 {Qt::Key_I, rows + 2},
                                                 {Qt::Key_R, rows + 1},
                                                 {Qt::Key_U, rows + 1}}) {
                Press(deed, Qt::AltModifier);
                EXPECT_EQ(Person::Count(name), expected) << list;
            }
            for (const char* caption : {"Edit Off", "Edit"}) {
                Press(Qt::Key_E, Qt::AltModifier);
                EXPECT_EQ(Person::Caption(std::string("cmd") + list + "Edit"), caption);
            }
        }
    });
}

TEST_F(Access, TheFocusStaysWhereItIsOfUse) {
    Edit(8, [] {
        // Apply keeps the focus where it was, also where it had it itself.
        for (const char* label : {"Edited", "Again"}) {
            Person::TypeLabel(label);
            if (label == std::string("Edited")) {
                Press(Qt::Key_S, Qt::ControlModifier);
            } else {
                Person::Button("cmdApply")->setFocus(Qt::TabFocusReason);
                Press(Qt::Key_Space);
            }
            EXPECT_FALSE(Person::Dirty());
            EXPECT_EQ(Person::Focused(), "txtDescription");
        }
        // At the last node one press too many changes and closes nothing.
        Press(Qt::Key_PageUp, Qt::AltModifier);
        EXPECT_EQ(Person::Text("cmbNode"), "AUTO 7");
        Person::Button("cmdLast")->setFocus(Qt::TabFocusReason);
        for (int i = 0; i < 3; ++i) {
            Press(Qt::Key_Return);
        }
        EXPECT_TRUE(Person::Window("GUI")->isVisible() && !Person::Dirty());
        EXPECT_EQ(Person::Focused() + Person::Text("cmbNode"), "cmbNodeAUTO 40");
    });
}

// What assistive technology finds in the window, in its order: names by role. What cannot be seen is not
// there.
void Walk(QAccessibleInterface* node, std::string& found) {
    static const std::map<QAccessible::Role, std::string> roles = {{QAccessible::Button, "button "},
                                                                   {QAccessible::ComboBox, "box "},
                                                                   {QAccessible::EditableText, "text "},
                                                                   {QAccessible::List, "list "},
                                                                   {QAccessible::Grouping, "group "}};
    for (int i = 0; i < node->childCount(); ++i) {
        QAccessibleInterface* child = node->child(i);
        if (child->state().invisible) {
            continue;
        }
        const auto role = roles.find(child->role());
        if (role != roles.end()) {
            found += role->second + child->text(QAccessible::Name).toStdString() + ", ";
        }
        if (role == roles.end() || child->role() == QAccessible::Grouping) {
            Walk(child, found);
        }
    }
}

TEST_F(Access, TheTreeHoldsWhatCanBeUsedByItsName) {
    Edit(1, [] {
        const auto spoken = [](const std::string& name) {
            return QAccessible::queryAccessibleInterface(Person::Find<QWidget>(name));
        };
        std::string found;
        Walk(QAccessible::queryAccessibleInterface(Person::Window("GUI")), found);
        const std::string changing = "button Add, button Insert, button Remove, button Edit, button Up, "
                                     "button Down, button Quick, ";
        EXPECT_EQ(found, "button OK, button Cancel, button Apply, button First node, button Previous node, "
                         "box Node, button Next node, button Last node, text Label, box Number of Digits, "
                         "box Terminating Digit, box Retry Limit, box Selection Time Out(sec), "
                         "box Digit Time Out(sec), group Prompts, list Prompts, " +
                             changing + "group Actions, list Actions, " + changing +
                             "group Exceptions, list Exceptions, button Edit, button Default, ");
        for (const auto& [label, box] : {std::pair{"lblLabel", "txtDescription"},
                                         {"lblNumDigits", "cmbNumDigits"},
                                         {"lblTermDigit", "cmbTermDigit"},
                                         {"lblRetryLimit", "cmbRetryLimit"},
                                         {"lblSelTimeOut", "cmbSelTimeOut"},
                                         {"lblDigitTimeOut", "cmbDigitTimeOut"}}) {
            const auto relations = spoken(box)->relations(QAccessible::Label);
            ASSERT_EQ(relations.size(), 1) << box;
            EXPECT_EQ(relations.front().first, spoken(label));
        }
        EXPECT_EQ(spoken("cmbNode")->text(QAccessible::Value), "AUTO 1");
        QAccessibleInterface* exceptions = spoken("LVExceptions");
        ASSERT_EQ(exceptions->childCount(), 5);
        EXPECT_EQ(exceptions->child(0)->text(QAccessible::Name), "Timeout, XFER 1, Operator");
        Person::ClickRow("LVExceptions", 0);
        EXPECT_TRUE(exceptions->child(0)->state().selected);
        EXPECT_FALSE(exceptions->child(1)->state().selected);
        Person::Press("cmdExceptionsEdit");
        found.clear();
        Walk(spoken("fraExceptions"), found);
        EXPECT_EQ(found, "list Exceptions, button Edit Off, button Default, box Timeout exception node type, "
                         "box Timeout exception node number, ");
    });
}

} // namespace
} // namespace KAL_AUTO_Node
