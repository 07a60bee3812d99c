#include "Person.h"
#include "TestStore.h"

#include <QAccessible>

namespace KAL_AUTO_Node {
namespace {

using enum QMessageBox::StandardButton;

constexpr std::array Lists = {"Prompts", "Actions", "Exceptions"};

std::string EditButton(const std::string& list) { return "cmd" + list + "Edit"; }

bool IsOpen() { return Person::Window("GUI")->isVisible(); }

// A way to leave AUTO 8.
struct Way {
    const char* handler; // reports what fails meanwhile
    int node;            // where it goes; 0 is out of the window
    std::function<void()> leave;
};

std::vector<Way> WaysToLeave() {
    return {
        {"cmdFirst_Click", 1, [] { Person::Press("cmdFirst"); }},
        {"cmdPrevious_Click", 7, [] { Person::Press("cmdPrevious"); }},
        {"cmdNext_Click", 9, [] { Person::Press("cmdNext"); }},
        {"cmdLast_Click", 40, [] { Person::Press("cmdLast"); }},
        {"cmbNode_Click", 20, [] { Person::Choose("cmbNode", "AUTO 20"); }},
        {"cmdCancel_Click", 0, [] { Person::Press("cmdCancel"); }},
        {"ShowNodeEditor", 0, [] { QTest::keyClick(Person::Window("GUI"), Qt::Key_Escape); }},
        {"ShowNodeEditor", 0, [] { Person::Window("GUI")->close(); }},
    };
}

class Editor : public testing::Test {
  protected:
    [[nodiscard]] std::string StoredLabel(int node) const {
        return store_.Value("SELECT NodeDescription FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = " +
                            std::to_string(node));
    }

    const TestStore store_;
    Person person_;
};

TEST_F(Editor, AsksWhetherToSaveBeforeItLeavesANode) {
    for (const auto& [handler, node, leave] : WaysToLeave()) {
        for (const auto answer : {NoButton, Yes, No}) {
            SCOPED_TRACE(std::string(handler) + ", answer " + std::to_string(answer));
            store_.Execute("UPDATE Node_AUTO SET NodeDescription = 'Label of ' || NodeNumber");
            EXPECT_TRUE(person_.Edit(8, [&, node = node, leave = leave] {
                if (answer != NoButton) {
                    Person::TypeLabel("Edited");
                    person_.WillAnswer({Cancel, answer});
                    leave();
                    EXPECT_TRUE(IsOpen() && Person::Dirty());
                    EXPECT_EQ(Person::Text("cmbNode"), "AUTO 8");
                    EXPECT_EQ(Person::Label(), "Edited");
                }
                leave();
                EXPECT_EQ(person_.Boxes(), std::vector<Box>(answer != NoButton ? 2 : 0, SaveQuestion()));
                EXPECT_EQ(StoredLabel(8), answer == Yes ? "Edited" : "Label of 8");
                ASSERT_EQ(IsOpen(), node != 0);
                if (IsOpen()) {
                    EXPECT_FALSE(Person::Dirty());
                    EXPECT_EQ(Person::Text("cmbNode"), "AUTO " + std::to_string(node));
                    EXPECT_EQ(Person::Label(), StoredLabel(node));
                    // What is saved next belongs to the node shown.
                    Person::TypeLabel("Next");
                    Person::Press("cmdApply");
                    EXPECT_EQ(StoredLabel(node), "Next");
                }
            }));
        }
    }
}

// The buttons are off at the ends as long as loading goes well; one that failed leaves them on.
TEST_F(Editor, LoadsNothingWhereTheNextNodeIsTheOneShown) {
    for (const std::string button : {"cmdFirst", "cmdPrevious", "cmdNext", "cmdLast"}) {
        EXPECT_TRUE(person_.Edit(button == "cmdFirst" || button == "cmdPrevious" ? 1 : 40, [&] {
            Person::Button(button)->setEnabled(true);
            Person::TypeLabel("Edited");
            person_.WillAnswer({No});
            Person::Press(button);
            EXPECT_EQ(person_.Boxes(), std::vector<Box>{SaveQuestion()});
            EXPECT_FALSE(Person::Dirty());
            EXPECT_EQ(Person::Label(), "Edited");
        }));
    }
}

TEST_F(Editor, SavesByApplyAndOkOfWhichOkCloses) {
    store_.Execute("UPDATE Node_General_Pool SET DateModified = 'never';" // ranges may overlap
                   "UPDATE Detail_AUTO_Action SET DTMFRangeHigh = '9' WHERE NodeMasterID = 8");
    EXPECT_TRUE(person_.Edit(8, [&] {
        Person::TypeLabel("'O'Brien'");
        Person::Press("cmdApply");
        EXPECT_TRUE(IsOpen() && !Person::Dirty());
        EXPECT_EQ(StoredLabel(8), "'O'Brien'");
        Person::TypeLabel("Accepted");
        Person::Press("cmdOK");
        EXPECT_FALSE(IsOpen());
        EXPECT_EQ(StoredLabel(8), "Accepted");
    }));
    // Enter presses OK, in a value box as well, and changes nothing by itself.
    EXPECT_TRUE(person_.Edit(9, [] {
        QTest::keyClick(Person::Combo("cmbSelTimeOut")->lineEdit(), Qt::Key_Return);
        EXPECT_FALSE(IsOpen());
    }));
    EXPECT_EQ(store_.Rows("SELECT NodeNumber FROM Node_General_Pool WHERE DateModified <> 'never'"),
              std::vector<std::string>{"8"});
}

// A host's own, stricter than the product's.
struct HostValidator : TextValidator {
    bool ValidateText(const std::string& text) override {
        if (text == "Fail") {
            throw std::runtime_error("the licence has expired");
        }
        return text != "Refused" && ComponentFactory().Create<TextValidator>()->ValidateText(text);
    }
};

// Whichever way a save was begun, its refusal leaves the person where she was.
TEST_F(Editor, StaysOnANodeThatItRefusesToSave) {
    const Box refusedLabel =
        Information("Double quotes and continuous single quotes are not allowed in the Label field");
    ComponentFactory factory;
    factory.Register("KAL_Validate_TEXTField.Business_Rules",
                     [] { return std::make_unique<HostValidator>(); });
    Business_Rules rules(factory);
    store_.Execute("UPDATE Detail_AUTO_Action SET DTMFRangeLow = '2', DTMFRangeHigh = '2'"
                   " WHERE NodeMasterID = 8 AND SequenceNo IN (5, 7)");
    std::vector<Way> ways = WaysToLeave();
    ways.push_back({"cmdApply_Click", 8, [] { Person::Press("cmdApply"); }});
    ways.push_back({"cmdApply_Click", 8, [] { Person::Press("cmdOK"); }});
    for (const auto& [handler, node, leave] : ways) {
        const auto expectRefusal = [&, handler = handler, node = node, leave = leave](const char* label,
                                                                                      const Box& told) {
            SCOPED_TRACE(std::string(handler) + ": " + label);
            Person::TypeLabel(label);
            std::vector<Box> expected = {told};
            if (node != 8) {
                person_.WillAnswer({Yes});
                expected.insert(expected.begin(), SaveQuestion());
            }
            person_.WillAnswer({Ok});
            leave();
            EXPECT_EQ(person_.Boxes(), expected);
            EXPECT_TRUE(IsOpen() && Person::Dirty());
            EXPECT_EQ(Person::Label(), label);
            Person::ExpectIdle();
            EXPECT_EQ(StoredLabel(8), "Sales");
        };
        EXPECT_TRUE(person_.Edit(rules, 8, [&, handler = handler] {
            expectRefusal("Duplicates",
                          Information("Duplicate entries are not allowed in the Actions.  Please "
                                      "update the Actions."));
            EXPECT_EQ(Person::SelectedRows("LVActions"), std::vector{4}) << "the first that repeats another";
            EXPECT_EQ(Person::Window("GUI")->focusWidget(), Person::List("LVActions"));
            Person::ClickRow("LVActions", 6, Qt::ControlModifier);
            Person::Press("cmdActionsRemove");
            for (const char* label : {"say \"hello\"", "O''Brien", "Refused"}) {
                expectRefusal(label, refusedLabel);
            }
            expectRefusal("Fail", ErrorBox(std::string("Source: KAL_AUTO_Node - ") + handler +
                                           " \r\nDescription: the licence has expired"));
        }));
    }
}

TEST_F(Editor, KeepsValueBoxesAtNumbersTheyMayHold) {
    const std::vector<std::array<const char*, 3>> entries = {
        {"cmbSelTimeOut", "60", "60"},    {"cmbSelTimeOut", "61", "6"}, {"cmbSelTimeOut", "-5", "1"},
        {"cmbSelTimeOut", "\u0663", "1"}, {"cmbNumDigits", "7", "7"},   {"cmbNumDigits", "8", "1"},
        {"cmbRetryLimit", "9", "0"},      {"cmbRetryLimit", "5", "5"},  {"cmbDigitTimeOut", "15", "15"},
        {"cmbDigitTimeOut", "16", "1"}};
    EXPECT_TRUE(person_.Edit(8, [&] {
        Person::WaitForFocus();
        for (const auto& [name, text, becomes] : entries) {
            SCOPED_TRACE(std::string(name) + ": " + text);
            QLineEdit* box = Person::Combo(name)->lineEdit();
            Person::Paste(box, text);
            EXPECT_EQ(box->cursorPosition(), box->text().size());
            EXPECT_TRUE(Person::Dirty());
            // Leaving the box must not choose anything, be it the same.
            Person::MarkUnchanged();
            Person::TextBox("txtDescription")->setFocus();
            EXPECT_EQ(Person::Text(name), becomes);
            EXPECT_FALSE(Person::Dirty());
        }
        Person::TypeOver("cmbSelTimeOut", "05");
        EXPECT_EQ(Person::Text("cmbSelTimeOut"), "15") << "corrected key by key";
    }));
}

// What a host, its components and its timers do while a call has not returned.
TEST_F(Editor, OutlastsWhatItsHostDoesMeanwhile) {
    const auto closeEverything = [] { QApplication::closeAllWindows(); };
    store_.Execute("DELETE FROM Node_General_Pool WHERE NodeTypeID = 0 AND NodeNumber = 12");

    struct HostDialog : ConfirmationDialog {
        std::int32_t Ask(std::int16_t /*kind*/, const std::string& /*message*/, std::int32_t /*icon*/,
                         std::int32_t /*buttons*/, const std::string& /*title*/) override {
            for (const char* button : {"cmdCancel", "cmdOK", "cmdApply", "cmdNext"}) {
                Person::Button(button)->click();
            }
            Person::Window("GUI")->close();
            EXPECT_TRUE(IsOpen());
            throw 5;
        }
    };

    ComponentFactory factory;
    factory.Register(ConfirmationDialog::Identifier, [] { return std::make_unique<HostDialog>(); });
    Business_Rules rules(factory);
    EXPECT_TRUE(person_.Edit(rules, 1, [&] {
        rules.ShowNodeEditor(1, 2, 2);
        EXPECT_EQ(Person::Text("cmbNode"), "AUTO 1") << "the call of before goes on";
        Person::ClickRow("LVPrompts", 0);
        Person::Press("cmdPromptsRemove");
        Person::TypeLabel("Edited");
        person_.LookAtBox = [&](QMessageBox& box) {
            EXPECT_NE(box.parentWidget(), nullptr);
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            Person::Window("GUI")->close();
            EXPECT_TRUE(IsOpen() && box.isVisible());
            if (box.icon() == QMessageBox::Question) {
                closeEverything();
            }
        };
        Person::Press("cmdNext");
        EXPECT_EQ(person_.Boxes(), std::vector<Box>{SaveQuestion()});
        EXPECT_TRUE(IsOpen() && Person::Dirty());
    }));
    person_.LookAtBox = nullptr;
    // A message of the preparation.
    bool asked = false;
    person_.LookAtBox = [&](QMessageBox&) {
        if (!std::exchange(asked, true)) {
            rules.ShowNodeEditor(1, 2, 2);
        }
    };
    rules.ShowNodeEditor(1, 2, 25);
    EXPECT_EQ(person_.Boxes(), std::vector<Box>{Information("AUTO 25 doesn't exist.")});
    // A host deletes the window that a message belongs to.
    auto* hosts = new QWidget;
    hosts->show();
    hosts->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(hosts));
    person_.LookAtBox = [&](QMessageBox&) { delete std::exchange(hosts, nullptr); };
    rules.ShowNodeEditor(1, 2, 25);
    person_.Boxes();
    EXPECT_FALSE(rules.Opened());
}

// Keys that the captions don't show act on the list used last.
TEST_F(Editor, IsUsedWithoutAMouse) {
    const auto press = [&](int key, Qt::KeyboardModifiers with = Qt::AltModifier) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), with);
    };
    EXPECT_TRUE(person_.Edit(8, [&] {
        Person::WaitForFocus();
        for (const auto& [key, list] : {std::pair{Qt::Key_1, "Prompts"}, {Qt::Key_2, "Actions"}}) {
            press(key);
            const std::string name = std::string("LV") + list;
            EXPECT_EQ(Person::Focused(), name);
            const int rows = Person::Count(name);
            for (const auto& [deed, expected] : {std::pair{Qt::Key_A, rows + 1},
                                                 {Qt::Key_I, rows + 2},
                                                 {Qt::Key_R, rows + 1},
                                                 {Qt::Key_U, rows + 1}}) {
                press(deed);
                EXPECT_EQ(Person::Count(name), expected) << list;
            }
            press(Qt::Key_E);
            EXPECT_EQ(Person::Caption(EditButton(list)), "Edit Off");
            press(Qt::Key_E);
            EXPECT_EQ(Person::Caption(EditButton(list)), "Edit");
        }
    }));
    EXPECT_TRUE(person_.Edit(8, [&] {
        Person::WaitForFocus();
        Person::TypeLabel("Edited");
        // Apply keeps the focus where it was, also where it had it itself.
        Person::TextBox("txtDescription")->setFocus();
        press(Qt::Key_S, Qt::ControlModifier);
        EXPECT_FALSE(Person::Dirty());
        EXPECT_EQ(Person::Focused(), "txtDescription");
        Person::TypeLabel("Again");
        Person::Button("cmdApply")->setFocus(Qt::TabFocusReason);
        press(Qt::Key_Space, {});
        EXPECT_FALSE(Person::Dirty());
        EXPECT_EQ(Person::Focused(), "txtDescription");
        // At the last node one press too many changes and closes nothing.
        press(Qt::Key_PageUp);
        EXPECT_EQ(Person::Text("cmbNode"), "AUTO 7");
        Person::Button("cmdLast")->setFocus(Qt::TabFocusReason);
        for (int i = 0; i < 3; ++i) {
            press(Qt::Key_Return, {});
        }
        EXPECT_TRUE(IsOpen() && !Person::Dirty());
        EXPECT_EQ(Person::Focused(), "cmbNode");
        EXPECT_EQ(Person::Text("cmbNode"), "AUTO 40");
    }));
}

// What assistive technology hears.
TEST_F(Editor, NamesItsBoxesAndReadsRowsWhole) {
    EXPECT_TRUE(person_.Edit(1, [&] {
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
    }));
}

void Edit(const std::string& list) {
    Person::ClickRow("LV" + list, 0);
    Person::Press(EditButton(list));
    ASSERT_FALSE(Person::OpenEditors().empty());
}

TEST_F(Editor, EndsEditModesWhereTheFocusGoes) {
    // Those of a list end the others' edit mode, the node's fields end all.
    const std::vector<std::string> controls = {
        "LVPrompts",    "cmdPromptsAdd",   "cmdPromptsRemove", "cmdPromptsUp",         "cmdQuickPrompts",
        "LVActions",    "cmdQuickActions", "LVExceptions",     "cmdExceptionsDefault", "txtDescription",
        "cmbNumDigits", "cmbTermDigit",    "cmbRetryLimit",    "cmbSelTimeOut",        "cmbDigitTimeOut"};
    EXPECT_TRUE(person_.Edit(8, [&] {
        Person::WaitForFocus();
        for (const std::string& name : controls) {
            for (const std::string list : Lists) {
                SCOPED_TRACE(name + " while editing in " + list);
                Edit(list);
                for (const char* other : {"cmdPromptsEdit", "cmdActionsEdit", "cmdOK", "cmbNode"}) {
                    Person::Find<QWidget>(other)->setFocus(Qt::TabFocusReason);
                    EXPECT_EQ(Person::Caption(EditButton(list)), "Edit Off") << other;
                }
                Person::Find<QWidget>(name)->setFocus(Qt::TabFocusReason);
                const bool ends = name.find(list) == std::string::npos;
                EXPECT_EQ(Person::Caption(EditButton(list)), ends ? "Edit" : "Edit Off");
                EXPECT_EQ(Person::OpenEditors().empty(), ends);
                if (!ends) {
                    Person::Press(EditButton(list));
                }
            }
        }
    }));
}

TEST_F(Editor, EndsEditModesWithAllThatSavesLeavesOrSetsAValue) {
    std::vector<Way> ways = WaysToLeave();
    // Escape belongs to the row being edited, and closing the window is about the window.
    ways.resize(6);
    for (const char* list : Lists) {
        EXPECT_TRUE(person_.Edit(8, [&] {
            const auto expectEnd = [&](const char* name, const std::function<void()>& deed) {
                SCOPED_TRACE(std::string(name) + " while editing in " + list);
                Edit(list);
                deed();
                EXPECT_EQ(Person::Caption(EditButton(list)), "Edit");
            };
            for (const auto& [handler, node, leave] : ways) {
                person_.WillAnswer({Cancel});
                expectEnd(handler, leave);
                EXPECT_EQ(person_.Boxes(), std::vector<Box>{SaveQuestion()});
            }
            for (const char* box : {"cmbNumDigits", "cmbRetryLimit", "cmbSelTimeOut", "cmbDigitTimeOut"}) {
                expectEnd(box, [box] { Person::Choose(box, "2"); });
            }
            for (const char* button : {"cmdApply", "cmdOK"}) {
                expectEnd(button, [button] { Person::Press(button); });
            }
        }));
    }
}

TEST_F(Editor, StaysInEditModeWhileScrollingOrThePressedHeaderHidesItsBoxes) {
    // AUTO 4 has more rows than fit; its five exceptions never scroll.
    EXPECT_TRUE(person_.Edit(4, [&] {
        for (const std::string list : Lists) {
            for (const auto& [deed, hides] :
                 {std::pair{&Person::Scroll, list != "Exceptions"}, {&Person::PressHeader, true}}) {
                Edit(list);
                deed("LV" + list);
                EXPECT_EQ(Person::OpenEditors().empty(), hides) << list;
                EXPECT_EQ(Person::Caption(EditButton(list)), "Edit Off");
                Person::ClickRow("LV" + list, 0);
                EXPECT_FALSE(Person::OpenEditors().empty()) << "a click opens them again";
                Person::Press(EditButton(list));
            }
        }
    }));
}

} // namespace
} // namespace KAL_AUTO_Node
