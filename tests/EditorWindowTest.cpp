#include "testing/Person.h"

#include <QAbstractItemView>

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

class Editor : public EditorTest {
  protected:
    [[nodiscard]] std::string StoredLabel(int node) const {
        return store_.Value("SELECT NodeDescription FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = " +
                            std::to_string(node));
    }
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
    for (const auto& [button, node] :
         {std::pair{"cmdFirst", 1}, {"cmdPrevious", 1}, {"cmdNext", 40}, {"cmdLast", 40}}) {
        person_.WillAnswer({No});
        const auto deed = [button = button] {
            Person::Button(button)->setEnabled(true);
            Person::TypeLabel("Edited");
            Person::Press(button);
            EXPECT_FALSE(Person::Dirty());
            EXPECT_EQ(Person::Label(), "Edited");
        };
        Edit(node, deed, {SaveQuestion()});
    }
}

TEST_F(Editor, SavesAndClosesByOk) {
    store_.Execute("UPDATE Node_General_Pool SET DateModified = 'never';" // ranges may overlap
                   "UPDATE Detail_AUTO_Action SET DTMFRangeHigh = '9' WHERE NodeMasterID = 8");
    Edit(8, [&] {
        Person::TypeLabel("'O'Brien'");
        Person::Press("cmdOK");
        EXPECT_FALSE(IsOpen());
        EXPECT_EQ(StoredLabel(8), "'O'Brien'");
    });
    // Enter presses OK, in a value box as well, and changes nothing by itself.
    Edit(9, [] {
        QTest::keyClick(Person::Combo("cmbSelTimeOut")->lineEdit(), Qt::Key_Return);
        EXPECT_FALSE(IsOpen());
    });
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
            EXPECT_EQ(Person::Text("cmbNode") + Person::Label(), std::string("AUTO 8") + label);
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

// What a host, its components and its timers do while a call has not returned.
TEST_F(Editor, OutlastsWhatItsHostDoesMeanwhile) {
    const auto closeEverything = [] { QApplication::closeAllWindows(); };
    // A host without windows of its own ends at that, where its loop runs.
    QObject closing;
    QObject::connect(qApp, &QGuiApplication::lastWindowClosed, &closing,
                     [] { ADD_FAILURE() << "taken for the host's last window"; });
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
    const auto deeds = [&] {
        rules.ShowNodeEditor(1, 2, 2);
        EXPECT_EQ(Person::Text("cmbNode"), "AUTO 1") << "the call of before goes on";
        Person::ClickRow("LVPrompts", 0);
        Person::Press("cmdPromptsRemove");
        Person::TypeLabel("Edited");
        person_.LookAtBox = [&](QMessageBox& box) {
            EXPECT_NE(box.parentWidget(), nullptr);
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.textInteractionFlags(), Qt::TextSelectableByMouse);
            Person::Window("GUI")->close();
            EXPECT_TRUE(IsOpen() && box.isVisible());
            if (box.icon() == QMessageBox::Question) {
                for (const char* button : {"cmdCancel", "cmdOK", "cmdApply", "cmdNext"}) {
                    Person::Button(button)->click();
                }
                closeEverything();
            }
        };
        Person::Press("cmdNext");
        EXPECT_EQ(person_.Boxes(), std::vector<Box>{SaveQuestion()});
        EXPECT_TRUE(IsOpen() && Person::Dirty());
    };
    QTimer::singleShot(0, qApp, [&] { QCoreApplication::exit(person_.Edit(rules, 1, deeds) ? 1 : 2); });
    EXPECT_EQ(QApplication::exec(), 1);
    person_.LookAtBox = nullptr;
    // A message of the preparation.
    bool asked = false;
    person_.LookAtBox = [&](QMessageBox&) {
        if (!std::exchange(asked, true)) {
            rules.ShowNodeEditor(1, 2, 2);
        }
    };
    rules.ShowNodeEditor(1, 2, 25);
    EXPECT_EQ(Person::Window("GUI"), nullptr);
    EXPECT_EQ(person_.Boxes(), std::vector<Box>{Information("AUTO 25 doesn't exist.")});
    closing.disconnect();
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

TEST_F(Editor, ItsPopUpsTellLabelsAsTheyAreStored) {
    Edit(8, [&] {
        QComboBox* box = Person::Combo("cmbNode");
        std::vector<QImage> looks;
        for (const char* label : {"Once", "Twice"}) {
            store_.Execute(std::string("UPDATE Node_General_Pool SET NodeDescription = '") + label +
                           "' WHERE PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 8");
            box->showPopup();
            EXPECT_GT(box->view()->window()->width(), box->width()) << "room for labels";
            looks.push_back(box->view()->grab().toImage());
            box->hidePopup();
        }
        EXPECT_NE(looks.front(), looks.back());
        const auto entries = [&](const QImage& look) { return look.copy(0, 0, 40, look.height()); };
        EXPECT_EQ(entries(looks.front()), entries(looks.back()));
    });
}

void EditRow(const std::string& list, int row = 0) {
    Person::ClickRow("LV" + list, row);
    Person::Press(EditButton(list));
    ASSERT_FALSE(Person::OpenEditors().empty());
}

TEST_F(Editor, EndsEditModesWhereThePersonGoesOn) {
    // Those of a list end the others' edit mode, the node's fields end all.
    const std::vector<std::string> controls = {
        "LVPrompts",    "cmdPromptsAdd",   "cmdPromptsRemove", "cmdPromptsUp",         "cmdQuickPrompts",
        "LVActions",    "cmdQuickActions", "LVExceptions",     "cmdExceptionsDefault", "txtDescription",
        "cmbNumDigits", "cmbTermDigit",    "cmbRetryLimit",    "cmbSelTimeOut",        "cmbDigitTimeOut"};
    std::vector<Way> ways = WaysToLeave();
    // Escape belongs to the row being edited, and closing the window is about the window.
    ways.resize(6);
    for (const std::string list : Lists) {
        const auto expect = [&](bool ends, const std::string& name, const std::function<void()>& deed) {
            SCOPED_TRACE(name + " while editing in " + list);
            EditRow(list);
            for (const char* other : {"cmdPromptsEdit", "cmdActionsEdit", "cmdOK", "cmbNode"}) {
                Person::Find<QWidget>(other)->setFocus(Qt::TabFocusReason);
                EXPECT_EQ(Person::Caption(EditButton(list)), "Edit Off") << other;
            }
            deed();
            EXPECT_EQ(Person::Caption(EditButton(list)), ends ? "Edit" : "Edit Off");
            EXPECT_EQ(Person::OpenEditors().empty(), ends);
            if (!ends) {
                Person::Press(EditButton(list));
            }
        };
        const auto deeds = [&] {
            for (const std::string& name : controls) {
                expect(name.find(list) == std::string::npos, name,
                       [&] { Person::Find<QWidget>(name)->setFocus(Qt::TabFocusReason); });
            }
            for (const char* box : {"cmbNumDigits", "cmbRetryLimit", "cmbSelTimeOut", "cmbDigitTimeOut"}) {
                expect(true, box, [box] { Person::Choose(box, "2"); });
            }
            expect(false, "cmbTermDigit", [] {
                Person::MarkUnchanged();
                Person::Choose("cmbTermDigit", "*");
                EXPECT_TRUE(Person::Dirty());
            });
            for (const auto& [handler, node, leave] : ways) {
                person_.WillAnswer({Cancel});
                expect(true, handler, leave);
            }
            for (const char* button : {"cmdApply", "cmdOK"}) {
                expect(true, button, [button] { Person::Press(button); });
            }
        };
        Edit(8, deeds, std::vector<Box>(ways.size(), SaveQuestion()));
    }
}

TEST_F(Editor, StaysInEditModeWhileScrollingOrThePressedHeaderHidesItsBoxes) {
    // AUTO 4 has more rows than fit; its five exceptions never scroll.
    Edit(4, [] {
        for (const std::string list : Lists) {
            for (const auto& [deed, hides] :
                 {std::pair{&Person::Scroll, list != "Exceptions"}, {&Person::PressHeader, true}}) {
                EditRow(list, 4); // which stays in sight
                deed("LV" + list);
                EXPECT_EQ(Person::OpenEditors().empty(), hides) << list;
                EXPECT_EQ(Person::Caption(EditButton(list)), "Edit Off");
                Person::ClickRow("LV" + list, 0);
                EXPECT_FALSE(Person::OpenEditors().empty()) << "a click opens them again";
                Person::Press(EditButton(list));
            }
        }
    });
}

} // namespace
} // namespace KAL_AUTO_Node
