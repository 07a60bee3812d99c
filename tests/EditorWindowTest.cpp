#include "Person.h"
#include "TestStore.h"

#include <QClipboard>
#include <QHeaderView>
#include <QWheelEvent>

#include <memory>

namespace KAL_AUTO_Node {
namespace {

using Rows = std::vector<std::string>;

constexpr QMessageBox::StandardButton Yes = QMessageBox::Yes;
constexpr QMessageBox::StandardButton No = QMessageBox::No;
constexpr QMessageBox::StandardButton Cancel = QMessageBox::Cancel;

constexpr const char* DuplicateMessage =
    "Duplicate entries are not allowed in the Actions.  Please update the Actions.";
constexpr const char* RefusedLabelMessage =
    "Double quotes and continuous single quotes are not allowed in the Label field";

std::string StoredLabel(const TestStore& store, int node) {
    return store.Value("SELECT NodeDescription FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = " +
                       std::to_string(node));
}

std::string ShownLabel() { return Person::TextBox("txtDescription")->text().toStdString(); }

std::string ShownPosition() { return Person::Find<QLabel>("lblRecordPosition")->text().toStdString(); }

void TypeLabel(const char* label) { Person::Type(Person::TextBox("txtDescription"), label); }

// The window system activates windows in its own time, and the focus takes effect in active ones only.
void WaitForFocus() { ASSERT_TRUE(QTest::qWaitForWindowActive(Person::Window("GUI"))); }

bool IsOpen() { return Person::Window("GUI")->isVisible(); }

// A way to leave the node shown. Where it goes to another node, that one's place in the selector stands here.
struct Way {
    const char* name;
    std::function<void()> leave;
    const char* node;
    int number;
    const char* position;

    [[nodiscard]] bool Closes() const { return node == nullptr; }
};

std::vector<Way> WaysToLeaveAuto8() {
    const auto press = [](const char* button) { return [button] { Person::Press(button); }; };
    return {
        {"First", press("cmdFirst"), "AUTO 1", 1, "1 of 17"},
        {"Previous", press("cmdPrevious"), "AUTO 7", 7, "7 of 17"},
        {"Next", press("cmdNext"), "AUTO 9", 9, "9 of 17"},
        {"Last", press("cmdLast"), "AUTO 40", 40, "17 of 17"},
        {"selector", [] { Person::Choose("cmbNode", "AUTO 20"); }, "AUTO 20", 20, "16 of 17"},
        {"Cancel", press("cmdCancel"), nullptr, 0, nullptr},
        {"Escape", [] { QTest::keyClick(Person::Window("GUI"), Qt::Key_Escape); }, nullptr, 0, nullptr},
        {"close box", [] { Person::Window("GUI")->close(); }, nullptr, 0, nullptr},
    };
}

TEST(LeavingANode, AsksWhetherToSaveItsChangesAndDoesWhatIsAnswered) {
    for (const Way& way : WaysToLeaveAuto8()) {
        for (const auto answer : {Yes, No, Cancel}) {
            SCOPED_TRACE(std::string(way.name) + (answer == Yes  ? ": Yes"
                                                  : answer == No ? ": No"
                                                                 : ": Cancel"));
            const TestStore store;
            Person person;
            EXPECT_TRUE(person.Edit(8, [&] {
                TypeLabel("Edited");
                person.WillAnswer({answer});
                way.leave();
                EXPECT_EQ(person.Boxes(), std::vector<Box>{SaveQuestion()});
                EXPECT_EQ(StoredLabel(store, 8), answer == Yes ? "Edited" : "Sales");
                EXPECT_EQ(IsOpen(), answer == Cancel || !way.Closes());
                EXPECT_TRUE(!IsOpen() || Person::Dirty() == (answer == Cancel));
                if (answer == Cancel) {
                    EXPECT_EQ(Person::Text("cmbNode"), "AUTO 8");
                    EXPECT_EQ(ShownPosition(), "8 of 17");
                    EXPECT_EQ(ShownLabel(), "Edited") << "loading the node again would lose the change";
                } else if (!way.Closes()) {
                    EXPECT_EQ(Person::Text("cmbNode"), way.node);
                    EXPECT_EQ(ShownPosition(), way.position);
                    EXPECT_EQ(ShownLabel(), StoredLabel(store, way.number));
                }
                // What is saved next belongs to the node shown.
                if (IsOpen()) {
                    TypeLabel("Next");
                    Person::Press("cmdApply");
                    EXPECT_EQ(store.Rows("SELECT NodeNumber FROM Node_AUTO WHERE NodeDescription = 'Next'"),
                              Rows{std::to_string(answer == Cancel ? 8 : way.number)});
                }
            }));
            EXPECT_EQ(person.Boxes(), std::vector<Box>{});
        }
    }
}

TEST(LeavingANode, AsksNothingWithoutChanges) {
    const TestStore store;
    for (const Way& way : WaysToLeaveAuto8()) {
        SCOPED_TRACE(way.name);
        Person person;
        EXPECT_TRUE(person.Edit(8, [&] {
            way.leave();
            EXPECT_EQ(IsOpen(), !way.Closes());
            EXPECT_EQ(Person::Text("cmbNode"), way.Closes() ? "AUTO 8" : way.node);
            EXPECT_FALSE(Person::Dirty());
        }));
        EXPECT_EQ(person.Boxes(), std::vector<Box>{});
    }
}

TEST(LeavingANode, NeitherAsksNorLoadsWhenItIsPickedAgain) {
    const TestStore store;
    Person person;
    EXPECT_TRUE(person.Edit(8, [] {
        TypeLabel("Edited");
        Person::Choose("cmbNode", "AUTO 8");
        EXPECT_EQ(ShownLabel(), "Edited");
        EXPECT_TRUE(Person::Dirty());
    }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

// The buttons are off there as long as loading goes well; one that failed leaves them on.
TEST(LeavingANode, AtTheEndsAsksButStays) {
    const TestStore store;
    for (const auto& [button, node] :
         {std::pair{"cmdFirst", 1}, {"cmdPrevious", 1}, {"cmdNext", 40}, {"cmdLast", 40}}) {
        const std::string before = StoredLabel(store, node);
        for (const auto answer : {Cancel, No, Yes}) {
            SCOPED_TRACE(std::string(button) + ' ' + std::to_string(answer));
            Person person;
            EXPECT_TRUE(person.Edit(node, [&, button = button, node = node] {
                EXPECT_FALSE(Person::Button(button)->isEnabled());
                Person::Button(button)->setEnabled(true);
                TypeLabel("Edited");
                person.WillAnswer({answer});
                Person::Press(button);
                EXPECT_EQ(person.Boxes(), std::vector<Box>{SaveQuestion()});
                EXPECT_EQ(Person::Text("cmbNode"), "AUTO " + std::to_string(node));
                EXPECT_EQ(ShownLabel(), "Edited");
                EXPECT_EQ(Person::Dirty(), answer == Cancel);
                EXPECT_EQ(StoredLabel(store, node), answer == Yes ? "Edited" : before);
            }));
            EXPECT_EQ(person.Boxes(), std::vector<Box>{});
        }
        store.Execute("UPDATE Node_AUTO SET NodeDescription = '" + before +
                      "' WHERE NodeDescription = 'Edited'");
    }
}

TEST(Saving, ByOkClosesAndByApplyDoesNot) {
    const TestStore store;
    Person person;
    EXPECT_TRUE(person.Edit(8, [&] {
        TypeLabel("Applied");
        Person::Press("cmdApply");
        EXPECT_TRUE(IsOpen());
        EXPECT_FALSE(Person::Dirty());
        EXPECT_EQ(Person::Text("cmbNode"), "AUTO 8");
        EXPECT_EQ(StoredLabel(store, 8), "Applied");

        TypeLabel("Accepted");
        Person::Press("cmdOK");
        EXPECT_FALSE(IsOpen());
        EXPECT_EQ(StoredLabel(store, 8), "Accepted");
    }));
    const std::string register_ =
        "SELECT DateModified FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 9"
        " AND NodeNumber = 9";
    const std::string before = store.Value(register_);
    EXPECT_TRUE(person.Edit(9, [&] {
        Person::Press("cmdOK");
        EXPECT_FALSE(IsOpen());
    }));
    EXPECT_EQ(store.Value(register_), before) << "nothing was changed";
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

// The ways that save, when saving is refused. All of them leave the person where she was.
TEST(Saving, RefusedLeavesTheNodeShownAndUnsaved) {
    const auto changed = [] { Person::Choose("cmbSelTimeOut", "9"); };

    struct Refusal {
        const char* setUp;
        std::function<void()> change;
        const char* message;
    };

    for (const Refusal& refusal :
         {Refusal{"UPDATE Detail_AUTO_Action SET DTMFRangeLow = '2', DTMFRangeHigh = '2'"
                  " WHERE NodeMasterID = 8 AND SequenceNo IN (5, 7)",
                  changed, DuplicateMessage},
          {"", [] { TypeLabel("say \"hello\""); }, RefusedLabelMessage},
          {"", [] { TypeLabel("O''Brien"); }, RefusedLabelMessage}}) {
        const bool duplicate = refusal.message == DuplicateMessage;
        const TestStore store;
        store.Execute(refusal.setUp);
        const auto dump = [&] {
            Rows rows = store.Rows("SELECT * FROM Node_AUTO");
            for (const std::string& row : store.Rows("SELECT * FROM Node_General_Pool")) {
                rows.push_back(row);
            }
            return rows;
        };
        const Rows before = dump();
        std::vector<Way> ways = WaysToLeaveAuto8();
        ways.push_back({"Apply", [] { Person::Press("cmdApply"); }, "AUTO 8", 8, nullptr});
        ways.push_back({"OK", [] { Person::Press("cmdOK"); }, "AUTO 8", 8, nullptr});
        for (const Way& way : ways) {
            SCOPED_TRACE(std::string(way.name) + ": " + refusal.message);
            Person person;
            EXPECT_TRUE(person.Edit(8, [&] {
                refusal.change();
                const std::string label = ShownLabel();
                std::vector<Box> expected;
                if (way.number != 8) {
                    person.WillAnswer({Yes});
                    expected.push_back(SaveQuestion());
                }
                expected.push_back(Information(refusal.message));
                person.WillAnswer({QMessageBox::Ok});
                way.leave();
                EXPECT_EQ(person.Boxes(), expected);
                EXPECT_TRUE(IsOpen());
                EXPECT_TRUE(Person::Dirty());
                EXPECT_EQ(Person::Text("cmbNode"), "AUTO 8");
                EXPECT_EQ(ShownLabel(), label);
                EXPECT_TRUE(Person::Find<QFrame>("Frame1")->isEnabled());
                EXPECT_FALSE(Person::Find<QStatusBar>("StatusBar1")->isVisible());
                const auto selected = Person::List("LVActions")->selectionModel()->selectedRows(1);
                EXPECT_EQ(selected.size(), duplicate ? 1 : 0);
                if (duplicate && !selected.empty()) {
                    EXPECT_EQ(selected.front().row(), 4) << "the first that repeats a row before it";
                    EXPECT_EQ(Person::Window("GUI")->focusWidget(), Person::List("LVActions"));
                }
            }));
            EXPECT_EQ(person.Boxes(), std::vector<Box>{});
        }
        EXPECT_EQ(dump(), before);
    }
}

TEST(Saving, AllowsRangesThatOverlapAndLabelsWithSingleQuotes) {
    const TestStore store;
    store.Execute("UPDATE Detail_AUTO_Action SET DTMFRangeHigh = '9' WHERE NodeMasterID = 8");
    Person person;
    EXPECT_TRUE(person.Edit(8, [&] {
        TypeLabel("'O'Brien'");
        Person::Press("cmdApply");
        EXPECT_EQ(StoredLabel(store, 8), "'O'Brien'");
    }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

// A host's own validator.
struct HostValidator {
    bool accepts = true;
    Rows asked;
    int alive = 0;

    class Validator : public TextValidator {
      public:
        explicit Validator(HostValidator& host) : host_(host) { ++host_.alive; }

        ~Validator() override { --host_.alive; }

        bool ValidateText(const std::string& text) override {
            host_.asked.push_back(text);
            return host_.accepts;
        }

      private:
        HostValidator& host_;
    };
};

TEST(Validator, MayBeTheHosts) {
    const TestStore store;
    HostValidator host;
    ComponentFactory factory;
    factory.Register("KAL_Validate_TEXTField.Business_Rules",
                     [&] { return std::make_unique<HostValidator::Validator>(host); });
    Business_Rules rules(factory);
    Person person;
    EXPECT_TRUE(person.Edit(rules, 15, [&] {
        EXPECT_EQ(host.asked, Rows{}) << "nothing is saved yet";
        host.accepts = false;
        Person::Choose("cmbSelTimeOut", "9");
        person.WillAnswer({QMessageBox::Ok});
        Person::Press("cmdApply");
        EXPECT_EQ(person.Boxes(), std::vector<Box>{Information(RefusedLabelMessage)});
        EXPECT_TRUE(Person::Dirty());

        host.accepts = true;
        TypeLabel("say \"hello\"");
        Person::Press("cmdApply");
        EXPECT_FALSE(Person::Dirty());
        EXPECT_EQ(host.alive, 0);
    }));
    EXPECT_EQ(host.asked, (Rows{"Réservations, Café Genève", "say \"hello\""}));
    EXPECT_EQ(StoredLabel(store, 15), "say \"hello\"");
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

// The handler of the control that was used reports it; OK and the ways to close say it their own way.
TEST(Validator, ThatCannotBeMadeIsReportedAndNothingIsLost) {
    const std::vector<ComponentFactory::Creator> failing = {
        {},
        [] { return nullptr; },
        [] { return ComponentFactory().Create<ConfirmationDialog>(); },
        []() -> std::unique_ptr<Component> { throw std::runtime_error("the licence has expired"); },
    };
    std::vector<Way> ways = WaysToLeaveAuto8();
    ways.push_back({"Apply", [] { Person::Press("cmdApply"); }, "AUTO 8", 8, nullptr});
    ways.push_back({"OK", [] { Person::Press("cmdOK"); }, "AUTO 8", 8, nullptr});
    const std::vector<std::string> handlers = {
        "cmdFirst_Click",  "cmdPrevious_Click", "cmdNext_Click",  "cmdLast_Click",  "cmbNode_Click",
        "cmdCancel_Click", "ShowNodeEditor",    "ShowNodeEditor", "cmdApply_Click", "cmdApply_Click"};
    const TestStore store;
    ComponentFactory::Creator creator;
    for (std::size_t i = 0; i < ways.size(); ++i) {
        SCOPED_TRACE(ways[i].name);
        creator = failing[i % failing.size()];
        ComponentFactory factory;
        factory.Register(TextValidator::Identifier, creator);
        Business_Rules rules(factory);
        Person person;
        EXPECT_TRUE(person.Edit(rules, 8, [&] {
            TypeLabel("Edited");
            if (ways[i].number != 8) {
                person.WillAnswer({Yes});
            }
            person.WillAnswer({QMessageBox::Ok});
            ways[i].leave();
            const auto boxes = person.Boxes();
            ASSERT_EQ(boxes.size(), ways[i].number != 8 ? 2U : 1U);
            const std::string cause =
                i % failing.size() == 3 ? "the licence has expired"
                                        : "Cannot create the component KAL_Validate_TEXTField.Business_Rules";
            EXPECT_EQ(boxes.back(),
                      (Box{"Error", "Source: KAL_AUTO_Node - " + handlers[i] + " \r\nDescription: " + cause,
                           QMessageBox::Warning, QMessageBox::Ok}));
            EXPECT_TRUE(IsOpen());
            EXPECT_TRUE(Person::Dirty());
            EXPECT_EQ(ShownLabel(), "Edited");
            EXPECT_TRUE(Person::Find<QFrame>("Frame1")->isEnabled());
            EXPECT_EQ(StoredLabel(store, 8), "Sales");
        }));
        EXPECT_EQ(person.Boxes(), std::vector<Box>{});
    }
}

TEST(ValueBox, KeepsANumberThatItMayHold) {
    struct Entry {
        const char* box;
        bool pasted;
        const char* text;
        const char* becomes;
    };

    const TestStore store;
    Person person;
    EXPECT_TRUE(person.Edit(8, [] {
        for (const Entry& entry : std::initializer_list<Entry>{
                 {"cmbSelTimeOut", false, "7", "7"},     {"cmbSelTimeOut", false, "75", "7"},
                 {"cmbSelTimeOut", false, "60", "60"},   {"cmbSelTimeOut", false, "61", "6"},
                 {"cmbSelTimeOut", false, "0", "1"},     {"cmbSelTimeOut", false, "x", "1"},
                 {"cmbSelTimeOut", false, "", "1"},      {"cmbSelTimeOut", false, "05", "15"},
                 {"cmbSelTimeOut", true, "05", "1"},     {"cmbSelTimeOut", true, "1a9", "1"},
                 {"cmbSelTimeOut", true, "75", "7"},     {"cmbSelTimeOut", true, "-5", "1"},
                 {"cmbSelTimeOut", true, " 5", "1"},     {"cmbSelTimeOut", true, "99999999999", "9"},
                 {"cmbSelTimeOut", true, "\u0663", "1"}, // a digit, but none of ours
                 {"cmbNumDigits", false, "7", "7"},      {"cmbNumDigits", false, "8", "1"},
                 {"cmbNumDigits", false, "9", "1"},      {"cmbRetryLimit", false, "9", "0"},
                 {"cmbRetryLimit", false, "0", "0"},     {"cmbRetryLimit", false, "5", "5"},
                 {"cmbRetryLimit", false, "25", "2"},    {"cmbDigitTimeOut", false, "15", "15"},
                 {"cmbDigitTimeOut", false, "16", "1"},
             }) {
            SCOPED_TRACE(std::string(entry.box) + (entry.pasted ? " at once: " : ": ") + entry.text);
            Person::Button("cmdApply")->setEnabled(false);
            QLineEdit* box = Person::Combo(entry.box)->lineEdit();
            box->setFocus();
            QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
            if (entry.pasted) {
                QGuiApplication::clipboard()->setText(QString::fromUtf8(entry.text));
                QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
            } else if (*entry.text == '\0') {
                QTest::keyClick(box, Qt::Key_Delete);
            } else {
                QTest::keyClicks(box, QString::fromLatin1(entry.text));
            }
            EXPECT_EQ(Person::Text(entry.box), entry.becomes);
            EXPECT_EQ(box->cursorPosition(), box->text().size());
            EXPECT_TRUE(Person::Dirty());
            // Leaving the box must not choose anything else.
            Person::TextBox("txtDescription")->setFocus();
            EXPECT_EQ(Person::Text(entry.box), entry.becomes);
        }
    }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

struct EditedList {
    const char* list;
    const char* edit;
    const char* editor; // one that is open on its first row
};

constexpr std::array<EditedList, 3> Lists = {
    {{"LVPrompts", "cmdPromptsEdit", "cmbPromptsNode"},
     {"LVActions", "cmdActionsEdit", "txtActionsDTMFRangeLow"},
     {"LVExceptions", "cmdExceptionsEdit", "cmbExceptionsTimeoutNode"}}};

std::string Caption(const EditedList& list) { return Person::Button(list.edit)->text().toStdString(); }

void Edit(const EditedList& list, int row = 0) {
    Person::ClickRow(list.list, row);
    Person::Press(list.edit);
    ASSERT_EQ(Caption(list), "Edit Off");
    ASSERT_TRUE(Person::Find<QWidget>(list.editor)->isVisible());
}

TEST(EditMode, EndsWhereTheFocusGoes) {
    const TestStore store;
    Person person;
    EXPECT_TRUE(person.Edit(8, [] {
        WaitForFocus();

        struct Group {
            std::vector<const char*> controls;
            std::array<bool, 3> ends;
        };

        for (const Group& group : std::initializer_list<Group>{
                 {{"LVPrompts", "cmdPromptsAdd", "cmdPromptsInsert", "cmdPromptsRemove", "cmdPromptsUp",
                   "cmdPromptsDown", "cmdQuickPrompts"},
                  {false, true, true}},
                 {{"LVActions", "cmdActionsAdd", "cmdActionsInsert", "cmdActionsRemove", "cmdActionsUp",
                   "cmdActionsDown", "cmdQuickActions"},
                  {true, false, true}},
                 {{"LVExceptions", "cmdExceptionsDefault"}, {true, true, false}},
                 {{"txtDescription", "cmbNumDigits", "cmbTermDigit", "cmbRetryLimit", "cmbSelTimeOut",
                   "cmbDigitTimeOut"},
                  {true, true, true}},
                 {{"cmdPromptsEdit", "cmdActionsEdit", "cmdExceptionsEdit", "cmdOK", "cmdApply", "cmdCancel",
                   "cmbNode", "cmdNext"},
                  {false, false, false}},
             }) {
            for (const char* name : group.controls) {
                for (std::size_t i = 0; i < Lists.size(); ++i) {
                    SCOPED_TRACE(std::string(name) + " while editing in " + Lists[i].list);
                    Edit(Lists[i]);
                    auto* control = Person::Find<QWidget>(name);
                    control->setFocus(Qt::TabFocusReason);
                    // A list's own buttons are off while it is edited.
                    EXPECT_EQ(control->hasFocus(), control->isEnabled());
                    EXPECT_EQ(Caption(Lists[i]), group.ends[i] ? "Edit" : "Edit Off");
                    EXPECT_EQ(Person::Find<QWidget>(Lists[i].editor)->isVisible(), !group.ends[i]);
                    if (!group.ends[i]) {
                        Person::Press(Lists[i].edit);
                    }
                }
            }
        }
        // From one of its editors to the next the row stays open.
        Edit(Lists[1]);
        for (const char* editor : {"txtActionsDTMFRangeHigh", "cmbActionsNode", "cmbActionsNumber"}) {
            Person::Find<QWidget>(editor)->setFocus(Qt::TabFocusReason);
            EXPECT_EQ(Caption(Lists[1]), "Edit Off") << editor;
        }
    }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

TEST(EditMode, EndsWithEverythingThatSavesLeavesOrSetsAValue) {
    const TestStore store;
    std::vector<Way> deeds = WaysToLeaveAuto8();
    // Escape belongs to the row being edited, and closing the window is about the window.
    std::erase_if(deeds, [](const Way& way) { return std::string_view(way.name) == "Escape"; });
    std::erase_if(deeds, [](const Way& way) { return std::string_view(way.name) == "close box"; });
    deeds.push_back({"Apply", [] { Person::Press("cmdApply"); }, "", 8, nullptr});
    deeds.push_back({"OK", [] { Person::Press("cmdOK"); }, nullptr, 8, nullptr});
    for (const char* box : {"cmbNumDigits", "cmbRetryLimit", "cmbSelTimeOut", "cmbDigitTimeOut"}) {
        deeds.push_back({box, [box] { Person::Choose(box, "2"); }, "", 8, nullptr});
    }
    for (const Way& deed : deeds) {
        for (const EditedList& list : Lists) {
            SCOPED_TRACE(std::string(deed.name) + " while editing in " + list.list);
            Person person;
            EXPECT_TRUE(person.Edit(8, [&] {
                Edit(list);
                EXPECT_TRUE(Person::Dirty());
                if (deed.number != 8) {
                    person.WillAnswer({Cancel});
                }
                deed.leave();
                EXPECT_EQ(Caption(list), "Edit");
            }));
            EXPECT_EQ(person.Boxes(), std::vector<Box>(deed.number != 8 ? 1 : 0, SaveQuestion()));
        }
    }
}

TEST(EditMode, StaysWhenScrollingOrAPressOnTheHeaderHidesTheEditors) {
    const TestStore store;
    Person person;
    const auto scroll = [](QTreeView* list) {
        const QPointF place = list->viewport()->rect().center();
        QWheelEvent wheel(place, list->viewport()->mapToGlobal(place), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(list->viewport(), &wheel);
    };
    const auto pressHeader = [](QTreeView* list) {
        QTest::mouseClick(list->header()->viewport(), Qt::LeftButton, {}, {40, 5});
    };
    const auto anyEditorVisible = [](const EditedList& list) {
        const QWidget* frame = Person::List(list.list)->parentWidget();
        const auto visible = [](const auto& editors) {
            return std::ranges::any_of(editors, [](const QWidget* editor) { return editor->isVisible(); });
        };
        return visible(frame->findChildren<QComboBox*>()) ||
               visible(frame->findChildren<QLineEdit*>(QString(), Qt::FindDirectChildrenOnly));
    };
    // AUTO 4 has more rows than fit; its five exceptions never scroll.
    EXPECT_TRUE(person.Edit(4, [&] {
        for (const EditedList& list : Lists) {
            SCOPED_TRACE(list.list);
            for (const auto& [deed, hides] :
                 {std::pair<std::function<void(QTreeView*)>, bool>{scroll, &list != &Lists[2]},
                  {pressHeader, true}}) {
                Edit(list);
                deed(Person::List(list.list));
                EXPECT_EQ(anyEditorVisible(list), !hides);
                EXPECT_EQ(Caption(list), "Edit Off");
                if (hides) {
                    Person::ClickRow(list.list, 0);
                    EXPECT_TRUE(Person::Find<QWidget>(list.editor)->isVisible())
                        << "a click opens them again";
                }
                Person::Press(list.edit);
                EXPECT_FALSE(anyEditorVisible(list));
            }
        }
    }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

} // namespace
} // namespace KAL_AUTO_Node
