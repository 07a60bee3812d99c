#include "Person.h"

#include <QAccessible>

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

// What assistive technology hears.
TEST_F(Access, BoxesHaveNamesAndRowsAreReadWhole) {
    Edit(1, [] {
        const auto spoken = [](const char* name) {
            return QAccessible::queryAccessibleInterface(Person::Find<QWidget>(name));
        };
        for (const auto& [box, name, value] : {std::array{"cmbNode", "Node", "AUTO 1"},
                                               {"cmbNumDigits", "Number of Digits", "3"},
                                               {"cmbPromptsNode", "Prompt node type", ""}}) {
            EXPECT_EQ(spoken(box)->text(QAccessible::Name), name);
            EXPECT_EQ(spoken(box)->text(QAccessible::Value), value);
        }
        QAccessibleInterface* exceptions = spoken("LVExceptions");
        ASSERT_EQ(exceptions->childCount(), 5);
        EXPECT_EQ(exceptions->child(0)->text(QAccessible::Name), "Timeout, XFER 1, Operator");
        Person::ClickRow("LVExceptions", 0);
        EXPECT_TRUE(exceptions->child(0)->state().selected);
        EXPECT_FALSE(exceptions->child(1)->state().selected);
    });
}

} // namespace
} // namespace KAL_AUTO_Node
