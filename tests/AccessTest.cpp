#include "testing/Person.h"

#include <QAbstractItemView>
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

// From going to each list to what is stored.
TEST_F(Access, ListsAreChangedAndSavedFromTheKeyboardAlone) {
    Edit(8, [] {
        const auto keys = [](std::initializer_list<int> before, const char* text) {
            std::ranges::for_each(before, [](int key) { Press(key); });
            Type(text);
        };
        for (const auto& [key, list] : {std::pair{Qt::Key_1, "LVPrompts"}, {Qt::Key_2, "LVActions"}}) {
            Press(key, Qt::AltModifier);
            EXPECT_EQ(Person::Focused(), list);
            const int rows = Person::Count(list);
            for (const auto& [deed, more] :
                 {std::pair{Qt::Key_A, 1}, {Qt::Key_I, 2}, {Qt::Key_R, 1}, {Qt::Key_U, 1}}) {
                Press(deed, Qt::AltModifier);
                EXPECT_EQ(Person::Count(list), rows + more) << list;
            }
            Press(key, Qt::AltModifier);
        }
        Press(Qt::Key_E, Qt::AltModifier);
        Press(Qt::Key_E, Qt::AltModifier);
        EXPECT_EQ(Person::Focused(), "cmdActionsEdit") << "in no list, nor where another key would change it";
        Press(Qt::Key_E, Qt::AltModifier);
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
        // Enter accepts a row, Escape takes it back: both close its editors, not the window.
        Type("79");
        Press(Qt::Key_Return);
        EXPECT_EQ(Person::Cell("LVActions", 7, 2) + Person::Focused(), "XFER 4LVActions");
        keys({Qt::Key_Up}, "5");
        EXPECT_EQ(Person::Focused(), "txtActionsDTMFRangeLow");
        const std::string typed = Person::Cell("LVActions", 6, 1);
        keys({Qt::Key_Escape}, "");
        EXPECT_NE(Person::Cell("LVActions", 6, 1), typed);
        EXPECT_EQ(Person::Focused(), "LVActions");
        EXPECT_TRUE(Person::OpenEditors().empty());
        keys({Qt::Key_Escape}, "");
        EXPECT_EQ(Person::Caption("cmdActionsEdit"), "Edit");
        Press(Qt::Key_1, Qt::AltModifier);
        keys({Qt::Key_Home, Qt::Key_Return}, "T");
        keys({Qt::Key_Tab}, "4");
        Press(Qt::Key_3, Qt::AltModifier);
        EXPECT_EQ(Person::Caption("cmdPromptsEdit"), "Edit");
        keys({Qt::Key_Down, Qt::Key_Return}, "M");
        keys({Qt::Key_Tab}, "9");
        keys({Qt::Key_Return}, "");
        Press(Qt::Key_S, Qt::ControlModifier);
        EXPECT_FALSE(Person::Dirty());
        // Enter presses the button that has the focus, not the default one.
        Person::Button("cmdActionsEdit")->setFocus();
        Press(Qt::Key_Return);
        ASSERT_TRUE(Person::Window("GUI")->isVisible());
        EXPECT_EQ(Person::Caption("cmdActionsEdit"), "Edit Off");
    });
    const auto stored = [&](const std::string& columns, const std::string& from, const char* row) {
        const auto rows = store_.Rows("SELECT " + columns + " FROM " + from + " = 8 AND PartID = 2");
        EXPECT_EQ(std::ranges::count(rows, row), 1) << testing::PrintToString(rows);
    };
    stored("SequenceNo, NodeType, NodeNumber", "Detail_AUTO_Prompts WHERE NodeMasterID", "1|TIME|4");
    stored("SequenceNo, NodeType, DTMFRangeHigh", "Detail_AUTO_Action WHERE NodeMasterID", "8|XFER|79");
    stored("InvalidNodeType, InvalidNodeNumber", "Node_AUTO WHERE NodeNumber", "MSG|9");
}

TEST_F(Access, TheFocusStaysWhereItIsOfUse) {
    Edit(8, [] {
        // Where a stray key changes nothing, and no row is chosen yet.
        EXPECT_EQ(Person::Focused() + std::to_string(Person::List("LVPrompts")->currentIndex().row()),
                  "LVPrompts-1");
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
        // And gives it to no button, which one press too many would press.
        Person::TypeLabel("Again and again");
        Person::Button("cmdPromptsRemove")->setFocus(Qt::TabFocusReason);
        Person::Button("cmdCancel")->setFocus(Qt::TabFocusReason);
        Press(Qt::Key_Tab);
        Press(Qt::Key_Space);
        Press(Qt::Key_Space);
        EXPECT_EQ(Person::Focused(), "LVPrompts");
        EXPECT_FALSE(Person::Dirty());
        // At the last node one press too many changes and closes nothing.
        Press(Qt::Key_PageUp, Qt::AltModifier);
        EXPECT_EQ(Person::Text("cmbNode"), "AUTO 7");
        Person::Button("cmdLast")->setFocus(Qt::TabFocusReason);
        for (int i = 0; i < 3; ++i) {
            Press(Qt::Key_Return);
        }
        EXPECT_TRUE(Person::Window("GUI")->isVisible() && !Person::Dirty());
        EXPECT_EQ(Person::Focused() + Person::Text("cmbNode"), "cmbNodeAUTO 40");
        Person::List("LVPrompts")->setFocus();
        std::string stops;
        do {
            stops += Person::Focused() + ' ';
            Press(Qt::Key_Tab);
        } while (Person::Focused() != "LVPrompts" && stops.size() < 2000);
        EXPECT_EQ(stops,
                  "LVPrompts cmdPromptsAdd cmdPromptsInsert cmdPromptsRemove cmdPromptsEdit cmdPromptsUp "
                  "cmdPromptsDown cmdQuickPrompts LVActions cmdActionsAdd cmdActionsInsert cmdActionsRemove "
                  "cmdActionsEdit cmdActionsUp cmdActionsDown cmdQuickActions LVExceptions cmdExceptionsEdit "
                  "cmdExceptionsDefault cmdOK cmdCancel cmdFirst cmdPrevious cmbNode txtDescription "
                  "cmbNumDigits cmbTermDigit cmbRetryLimit cmbSelTimeOut cmbDigitTimeOut ");
    });
}

// What assistive technology finds in the window, in its order: names by role. What cannot be seen is not
// there.
void Walk(QAccessibleInterface* node, std::string& found) {
    static const std::map<QAccessible::Role, std::string> roles = {
        {QAccessible::Button, "button "},     {QAccessible::ComboBox, "box "},
        {QAccessible::EditableText, "text "}, {QAccessible::List, "list "},
        {QAccessible::Grouping, "group "},    {QAccessible::PageTab, "page "},
        {QAccessible::Tree, "table "}};
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
        EXPECT_EQ(found, "button First node, button Previous node, box Node, button Next node, button Last "
                         "node, text Label, box Number of Digits, "
                         "box Terminating Digit, box Retry Limit, box Selection Time Out(sec), "
                         "box Digit Time Out(sec), group Prompts, list Prompts, " +
                             changing + "group Actions, list Actions, " + changing +
                             "group Exceptions, list Exceptions, button Edit, button Default, "
                             "button OK, button Cancel, button Apply, ");
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
        // What is disabled cannot be used over assistive technology either.
        auto* frame = Person::Find<QFrame>("Frame1");
        for (const bool enabled : {false, true}) {
            frame->setEnabled(enabled);
            exceptions->child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            EXPECT_EQ(Person::SelectedRows("LVExceptions"), std::vector{enabled ? 2 : 0});
            spoken("cmbNode")->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
            EXPECT_EQ(Person::Combo("cmbNode")->view()->isVisible(), enabled);
        }
        Person::Combo("cmbNode")->hidePopup();
        Person::ClickRow("LVExceptions", 0);
        Person::Press("cmdExceptionsEdit");
        found.clear();
        Walk(spoken("fraExceptions"), found);
        EXPECT_EQ(found, "list Exceptions, button Edit Off, button Default, box Timeout exception node type, "
                         "box Timeout exception node number, ");
    });
}

// Each page of node information, and the window that finds nodes; all by keys.
TEST_F(Access, TheWindowsBesideTheEditorAreReadAndUsedByTheirNames) {
    Edit(8, [] {
        const auto walked = [](QWidget& window) {
            std::string found;
            Walk(QAccessible::queryAccessibleInterface(&window), found);
            return found;
        };
        Press(Qt::Key_I, Qt::ControlModifier);
        QWidget* window = Person::Window("frmInformation");
        ASSERT_TRUE(window != nullptr && QTest::qWaitForWindowActive(window, 30'000));
        const std::string tabs = "page Used By (3), page History (0), page Entries (9), page Findings (0), ";
        EXPECT_TRUE(QTest::qWaitFor([&] { return walked(*window).ends_with(tabs); }, 30'000))
            << walked(*window);
        for (const auto& [key, page] :
             {std::pair{Qt::Key_U, "table Used By, "},
              {Qt::Key_H, "table History, text What this change has changed, button Put Back..., "},
              {Qt::Key_E, "table Entries, text What a caller keys, "},
              {Qt::Key_F, "table Findings, "}}) {
            QTest::keyClick(window, key, Qt::AltModifier);
            EXPECT_EQ(walked(*window), page + tabs);
        }
        EXPECT_EQ(QAccessible::queryAccessibleInterface(Person::List("LVInfoUses"))->childCount(), 3 + 3 * 3);
        QTest::keyClick(window, Qt::Key_E, Qt::AltModifier);
        QTest::keyClick(window, Qt::Key_Tab);
        QTest::keyClicks(QApplication::focusWidget(), "3");
        EXPECT_EQ(QAccessible::queryAccessibleInterface(Person::TextBox("txtInfoEntry"))
                      ->text(QAccessible::Description),
                  "3: MSG 24");
        QTimer::singleShot(0, [&] {
            QWidget* finding = QApplication::activeModalWidget();
            EXPECT_EQ(walked(*finding),
                      "text Number, or words of the label, table Nodes, button Go To, button Cancel, ");
            finding->close();
        });
        QTest::keyClick(window, Qt::Key_G, Qt::ControlModifier);
        window->activateWindow();
        QTest::keyClick(window, Qt::Key_Escape);
        EXPECT_FALSE(window->isVisible());
    });
}

} // namespace
} // namespace KAL_AUTO_Node
