#include "Person.h"
#include "TestStore.h"
#include "form/GUI.h"
#include "platform/RuntimeError.h"
#include "rules/NodeRules.h"

#include <QRegularExpression>

#include <array>
#include <fstream>
#include <memory>

namespace KAL_AUTO_Node {
namespace {

using Texts = std::vector<std::string>;

constexpr std::array<const char*, 6> RecordControls = {"cmdFirst",          "cmdPrevious", "cmbNode",
                                                       "lblRecordPosition", "cmdNext",     "cmdLast"};
constexpr std::array<const char*, 7> TypePickers = {
    "cmbPromptsNode",         "cmbActionsNode",        "cmbExceptionsTimeoutNode", "cmbExceptionsInvalidNode",
    "cmbExceptionsAbortNode", "cmbExceptionsStarNode", "cmbExceptionsPoundNode"};

Box ErrorReport(const std::string& text) { return {"Error", text, QMessageBox::Warning, QMessageBox::Ok}; }

// The procedures that reported a failure, in order; a box that is no such report stands there as it is.
std::string Reporters(const std::vector<Box>& boxes, const std::string& description = {}) {
    static const QRegularExpression form("^Source: [^\r]+ - (\\w+) \r\nDescription: (.+)$");
    std::string reporters;
    for (const Box& box : boxes) {
        const auto match = form.match(QString::fromStdString(box.text));
        const bool report = match.hasMatch() && box == ErrorReport(box.text) &&
                            match.captured(2).contains(QString::fromStdString(description));
        reporters += (reporters.empty() ? "" : " ") +
                     (report ? match.captured(1).toStdString() : testing::PrintToString(box));
    }
    return reporters;
}

std::string Entries(const QComboBox& box) {
    QStringList entries;
    for (int i = 0; i < box.count(); ++i) {
        entries += box.itemText(i);
    }
    return entries.join(' ').toStdString();
}

std::string Entries(const char* box) { return Entries(*Person::Combo(box)); }

std::string Numbers(int first, int last) {
    std::string numbers = std::to_string(first);
    while (first < last) {
        numbers += ' ' + std::to_string(++first);
    }
    return numbers;
}

Texts RowsOf(const char* list) {
    Texts rows;
    for (int row = 0; row < Person::Count(list); ++row) {
        rows.push_back(Person::Key(list, row) + ": " + Person::Row(list, row));
    }
    return rows;
}

bool Visible(const char* control) { return Person::Find<QWidget>(control)->isVisible(); }

// The navigation buttons that can be pressed, and the position shown.
std::string Navigation() {
    std::string shown;
    for (const char* button : {"cmdFirst", "cmdPrevious", "cmdNext", "cmdLast"}) {
        shown += Person::Button(button)->isEnabled() ? std::string(button + 3) + ' ' : "";
    }
    return shown + Person::Find<QLabel>("lblRecordPosition")->text().toStdString();
}

std::string Title() { return Person::TextBox("txtDescription")->text().toStdString(); }

TEST(EditorOpens, OnAStoredNode) {
    const TestStore store;
    Person person;
    const bool appeared = person.Edit(1, [] {
        EXPECT_EQ(Person::Window("GUI")->windowTitle(), "AUTO Node Editor");
        EXPECT_EQ(Title(), "Main menu");
        EXPECT_EQ(RowsOf("LVPrompts"), (Texts{"1a: 1|1|TIME 1|Greeting by time of day|TIME|2|1",
                                              "2a: 2|2|MSG 2|Welcome, main menu|MSG|0|2",
                                              "3a: 3|3|MSG 3|Today's specials|MSG|0|3"}));
        EXPECT_EQ(Person::Count("LVActions"), 9);
        EXPECT_EQ(RowsOf("LVActions")[5], "6a: 6|601-660|CMD 1|Dial the extension|CMD|1|1|601|660");
        EXPECT_EQ(RowsOf("LVExceptions"),
                  (Texts{"1a: 1|Timeout|XFER 1|Operator|XFER|4|1",
                         "2a: 2|Invalid|MSG 6|Invalid choice, try again|MSG|0|6",
                         "3a: 3|Abort|MSG 1|Goodbye|MSG|0|1", "4a: 4|*|AUTO 11|Language selection|AUTO|9|11",
                         "5a: 5|#|NONE||NONE|814|0"}));
        EXPECT_EQ(Entries("cmbNumDigits"), Numbers(1, 7));
        EXPECT_EQ(Entries("cmbTermDigit"), "No * # */#");
        EXPECT_EQ(Entries("cmbRetryLimit"), Numbers(0, 5));
        EXPECT_EQ(Entries("cmbSelTimeOut"), Numbers(1, 60));
        EXPECT_EQ(Entries("cmbDigitTimeOut"), Numbers(1, 15));
        EXPECT_FALSE(Person::Dirty());
        EXPECT_FALSE(Visible("StatusBar1"));
        for (const char* control : RecordControls) {
            EXPECT_TRUE(Visible(control)) << control;
        }
        for (const std::string picker : TypePickers) {
            EXPECT_FALSE(Visible(picker.c_str())) << picker;
            EXPECT_FALSE(Visible((picker.substr(0, picker.size() - 4) + "Number").c_str())) << picker;
        }
        for (const char* box : {"txtActionsDTMFRangeLow", "txtActionsDTMFRangeHigh", "txtActionsDash"}) {
            EXPECT_FALSE(Visible(box)) << box;
        }
        const auto columns = [](const char* list) {
            std::string shown;
            const QTreeView* view = Person::List(list);
            for (int column = 0; column < view->model()->columnCount(); ++column) {
                const std::string caption =
                    view->model()->headerData(column, Qt::Horizontal).toString().toStdString();
                shown += view->isColumnHidden(column) ? '(' + caption + ')' : '[' + caption + ']';
            }
            return shown;
        };
        EXPECT_EQ(columns("LVPrompts"), "(#)[Order][Command/Node][Label](NodeName)(NodeTypeID)(NodeNumber)");
        EXPECT_EQ(columns("LVActions"), "(#)[Entry][Command/Node][Label](NodeName)(NodeTypeID)(NodeNumber)"
                                        "(DTMFRangeLow)(DTMFRangeHigh)");
        EXPECT_EQ(columns("LVExceptions"), "(#)[][Command/Node][Label](NodeName)(NodeTypeID)(NodeNumber)");
        EXPECT_EQ(Person::List("LVPrompts")->columnWidth(2), 1600 / 15);
        EXPECT_EQ(Person::List("LVExceptions")->columnWidth(1), 900 / 15);

        EXPECT_EQ(Entries("cmbPromptsNode"), "MSG TIME LIST SPEAK M_ON M_OFF EMPTY");
        EXPECT_EQ(Person::Combo("cmbPromptsNode")->itemData(2, Qt::UserRole).toInt(), 8);
        EXPECT_EQ(Person::Combo("cmbPromptsNode")->itemData(6, Qt::UserRole).toInt(), 999);
        EXPECT_EQ(Person::Combo("cmbNode")->count(), 17);
        EXPECT_EQ(Person::Text("cmbNode"), "AUTO 1");
        EXPECT_EQ(Person::Combo("cmbNode")->itemText(16), "AUTO 40");
        EXPECT_EQ(Person::Combo("cmbNode")->itemData(16, Qt::UserRole).toInt(), 40);
    });
    EXPECT_TRUE(appeared);
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

TEST(EditorOpens, WithTheStoredSettingsOrTheFirstOfEachList) {
    struct Settings {
        const char* stored; // digits, terminating digit, retry limit, selection and digit time-out
        const char* shown;
    };

    constexpr std::array<Settings, 9> all = {{{"NULL, NULL, NULL, NULL, NULL", "1 No 0 1 1"},
                                              {"7, '*/#', 5, 60, 15", "7 */# 5 60 15"},
                                              {"8, 'no', 6, 61, 16", "1 No 0 1 1"},
                                              {"2, '*', 1, 2, 2", "2 * 1 2 2"},
                                              {"0, '#', 0, 0, 0", "1 # 0 1 1"},
                                              {"1, 'NO', 4, 59, 14", "1 No 4 59 14"},
                                              {"-1, '##', -1, -1, -1", "1 No 0 1 1"},
                                              {"6, '', 3, 30, 8", "6 No 3 30 8"},
                                              {"70000, '* ', 65536, 65537, 65537", "1 No 0 1 1"}}};
    const TestStore store;
    for (std::size_t i = 0; i < all.size(); ++i) {
        store.Execute("UPDATE Node_AUTO SET (NumberOfDigits, TerminatingDigit, RetryLimit, SelectionTimeout, "
                      "DigitTimeout) = (" +
                      std::string(all[i].stored) +
                      ") WHERE PartID = 2 AND NodeNumber = " + std::to_string(i + 1));
    }
    Person person;
    person.Edit(9, [&] {
        for (std::size_t i = 0; i < all.size(); ++i) {
            Person::Choose("cmbNode", ("AUTO " + std::to_string(i + 1)).c_str());
            std::string shown;
            for (const char* box :
                 {"cmbNumDigits", "cmbTermDigit", "cmbRetryLimit", "cmbSelTimeOut", "cmbDigitTimeOut"}) {
                const QComboBox* combo = Person::Combo(box);
                EXPECT_EQ(combo->itemText(combo->currentIndex()), combo->currentText()) << box;
                shown += (shown.empty() ? "" : " ") + Person::Text(box);
            }
            EXPECT_EQ(shown, all[i].shown) << all[i].stored;
        }
    });
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

TEST(EditorOpens, WithRowsAsTheyAreStored) {
    const TestStore store;
    store.Execute(R"(
        INSERT INTO Node_General_Pool VALUES (1, 2, 999, 1, 'EMPTY', 'A label all the same', NULL),
            (2, 2, 0, 777, 'MSG', 'Of another configuration', NULL), (1, 1, 0, 777, 'MSG', 'Elsewhere', NULL);
        INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber)
            VALUES (1, 2, 2, 12, 999, 'BEEP', 1), (1, 2, 2, 3, 2, 'OLD', 2), (1, 2, 2, 2, 814, 'NONE', 4),
                   (1, 2, 2, 40, 0, 'MSG', 50), (1, 2, 2, 41, 0, 'MSG', 777);
        INSERT INTO Detail_AUTO_Action (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber,
            DTMFRangeLow, DTMFRangeHigh)
            VALUES (1, 2, 2, 5, 999, 'BEEP', 9, NULL, '77'), (1, 2, 2, 2, 814, 'NONE', 0, '5', NULL),
                   (1, 2, 2, 7, 0, 'MSG', 12, '007', '0099'), (1, 2, 2, 8, 0, 'MSG', 1, NULL, NULL);
        UPDATE Node_AUTO SET TimeoutNodeTypeID = 814, TimeoutNodeType = 'STAY', TimeoutNodeNumber = 3,
            InvalidNodeTypeID = 999, InvalidNodeType = 'BEEP', InvalidNodeNumber = 1,
            AbortNodeTypeID = 1, AbortNodeType = 'CMD', AbortNodeNumber = 5,
            StarNodeTypeID = 4, StarNodeType = 'XFER', StarNodeNumber = 60,
            PoundNodeTypeID = 2, PoundNodeType = 'TIME', PoundNodeNumber = 4 WHERE PartID = 2 AND NodeNumber = 2;)");
    Person person;
    person.Edit(2, [] {
        EXPECT_EQ(RowsOf("LVPrompts"),
                  (Texts{"2a: 2|2|NONE 4||NONE|814|4", "3a: 3|3|OLD 2|Office open|TIME|2|2",
                         "12a: 12|12|BEEP|A label all the same|EMPTY|999|1", "40a: 40|40|MSG 50||MSG|0|50",
                         "41a: 41|41|MSG 777||MSG|0|777"}));
        EXPECT_EQ(RowsOf("LVActions"),
                  (Texts{"2a: 2|0-0|NONE 0||NONE|814|0|0|0", "5a: 5|0-0|BEEP||EMPTY|999|9|0|0",
                         "7a: 7|007-0099|MSG 12|Opening hours, Genève|MSG|0|12|007|0099",
                         "8a: 8|0-0|MSG 1|Goodbye|MSG|0|1|0|0"}));
        EXPECT_EQ(
            RowsOf("LVExceptions"),
            (Texts{"1a: 1|Timeout|STAY||NONE|814|3", "2a: 2|Invalid|BEEP 1|A label all the same|EMPTY|999|1",
                   "3a: 3|Abort|CMD 5|Hang up|CMD|1|5", "4a: 4|*|XFER 60|Željko Horvat|XFER|4|60",
                   "5a: 5|#|TIME 4|Cafés open|TIME|2|4"}));
        Person::Choose("cmbNode", "AUTO 3");
        EXPECT_EQ(Title(), "");
        EXPECT_EQ(RowsOf("LVActions"), (Texts{"1a: 1|0-0|MSG 50||MSG|0|50|0|0"}));
        // A node without actions leaves none of the one before.
        Person::Choose("cmbNode", "AUTO 7");
        EXPECT_EQ(RowsOf("LVPrompts"), (Texts{"1a: 1|1|EMPTY|A label all the same|EMPTY|999|1"}));
        EXPECT_EQ(Person::Count("LVActions"), 0);
        EXPECT_EQ(Person::Count("LVExceptions"), 5);
    });
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

TEST(EditorOpens, AtAPlaceAmongThePartitionsNodes) {
    const TestStore store;
    store.Execute("UPDATE Node_AUTO SET PartID = 1 WHERE NodeNumber = 7;"
                  "UPDATE Node_AUTO SET PartID = 1, NodeNumber = -1 WHERE NodeNumber = 40");
    Person person;
    Business_Rules rules;
    const auto opened = [&](int node) {
        std::string shown;
        const auto look = [&] { shown = Navigation() + ' ' + Person::Text("cmbNode") + ' ' + Title(); };
        EXPECT_TRUE(person.Edit(rules, node, look, 1, 1));
        return shown;
    };
    EXPECT_EQ(opened(1), "Next Last 1 of 3 AUTO 1 Head office, by day");
    EXPECT_EQ(opened(2), "First Previous Next Last 2 of 3 AUTO 2 Head office, by night");
    EXPECT_EQ(opened(7), "First Previous 3 of 3 AUTO 7 Seasonal offers");
    // One that the selector does not list.
    EXPECT_EQ(opened(-1), "Next Last 1 of 3 AUTO 1 Line test, longest times");
    store.Execute("DELETE FROM Node_AUTO WHERE PartID = 1 AND NodeNumber <> 2");
    EXPECT_EQ(opened(2), "1 of 1 AUTO 2 Head office, by night");
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

TEST(EditorOpens, OnTheTemplateWithoutTheSelector) {
    const TestStore store;
    Person person;
    Business_Rules rules;
    for (const int node : {0, 4, 0}) {
        EXPECT_TRUE(person.Edit(rules, node, [&] {
            for (const char* control : RecordControls) {
                EXPECT_EQ(Visible(control), node != 0) << control;
            }
            EXPECT_EQ(Person::Text("cmbNode"), "AUTO " + std::to_string(node));
            EXPECT_EQ(Person::Combo("cmbNode")->itemText(0), node == 0 ? "AUTO 0" : "AUTO 1");
            EXPECT_EQ(Title(), node == 0 ? "Menu template" : "Extension directory");
            EXPECT_FALSE(Person::Dirty());
        }));
    }
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

TEST(EditorOpens, NotOnAMissingNode) {
    const TestStore store;
    Person person;
    Business_Rules rules;
    EXPECT_FALSE(person.Edit(rules, 25, [] {}));
    EXPECT_EQ(Person::Window("GUI"), nullptr);
    EXPECT_EQ(person.Boxes(), std::vector<Box>{Information("AUTO 25 doesn't exist.")});
    // One that goes while others are edited leaves the window as it was.
    EXPECT_TRUE(person.Edit(rules, 1, [&] {
        store.Execute("DELETE FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 2");
        Person::Press("cmdNext");
        EXPECT_EQ(Title(), "Main menu");
        EXPECT_EQ(Person::Count("LVActions"), 9);
        EXPECT_EQ(Navigation(), "First Previous Next Last 1 of 17");
    }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{Information("AUTO 2 doesn't exist.")});
    // The type's own name is shown, and a partition may be empty.
    store.Execute("UPDATE SR_Node_Type_Names SET English_Name = 'MENU' WHERE ID = 9");
    const auto nothing = [] {};
    EXPECT_FALSE(person.Edit(rules, 1, nothing, 7, 2));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{Information("MENU 1 doesn't exist.")});
}

TEST(EditorOpens, ClosingAsksOnlyAboutChanges) {
    const TestStore store;
    Person person;
    const auto escape = [] { QTest::keyClick(Person::Window("GUI"), Qt::Key_Escape); };
    person.Edit(1, [&] {
        escape();
        EXPECT_FALSE(Person::Window("GUI")->isVisible());
    });
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
    person.WillAnswer({QMessageBox::Cancel, QMessageBox::No});
    person.Edit(1, [&] {
        Person::Type(Person::TextBox("txtDescription"), "Other");
        escape();
        EXPECT_TRUE(Person::Window("GUI")->isVisible());
        EXPECT_EQ(Title(), "Other");
        EXPECT_EQ(Person::Count("LVActions"), 9);
        Person::Window("GUI")->close();
        EXPECT_FALSE(Person::Window("GUI")->isVisible());
    });
    EXPECT_EQ(person.Boxes(), (std::vector<Box>{SaveQuestion(), SaveQuestion()}));
    EXPECT_EQ(store.Value("SELECT NodeDescription FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 1"),
              "Main menu");
}

TEST(EditorOpens, AsFarAsItsProceduresGet) {
    const TestStore store;
    Person person;
    // Types without a name.
    store.Execute("INSERT INTO SR_Node_Type_can_contain_Node_Type VALUES (9, 7, 900), (9, 5, 3);"
                  "DELETE FROM SR_Node_Type_Names WHERE ID = 3");
    EXPECT_TRUE(person.Edit(1, [] {
        EXPECT_EQ(Entries("cmbPromptsNode"), "MSG TIME LIST SPEAK M_ON M_OFF");
        EXPECT_EQ(Entries("cmbActionsNode"), "MSG CMD TIME");
        EXPECT_EQ(Entries("cmbExceptionsInvalidNode"), "MSG CMD TIME XFER LIST AUTO DBN NONE SPEAK");
        EXPECT_EQ(Entries("cmbExceptionsAbortNode"), "MSG CMD TIME");
        EXPECT_EQ(Entries("cmbExceptionsStarNode"), "");
        EXPECT_EQ(Entries("cmbTermDigit"), "No * # */#");
        EXPECT_EQ(Navigation(), "Next Last 1 of 17");
    }));
    EXPECT_EQ(Reporters(person.Boxes(), "is not in this collection"),
              "LoadPromptsNode LoadActionsNode LoadExceptionsNode");
    // A row that cannot be shown; who reads the report is not kept waiting by the pointer.
    person.LookAtBox = [](const QMessageBox&) { EXPECT_EQ(QApplication::overrideCursor(), nullptr); };
    EXPECT_FALSE(person.Edit(10, [] {}));
    EXPECT_EQ(Reporters(person.Boxes()), "LoadPromptsNode LoadActionsNode LoadExceptionsNode LoadData");
}

TEST(EditorOpens, NotWithoutItsTables) {
    constexpr std::array<std::array<const char*, 2>, 6> cases = {{
        {"SR_Node_Type_can_contain_Node_Type", "shown LoadPromptsNode LoadActionsNode LoadExceptionsNode"},
        {"Node_Type_Max", "hidden LoadNodeName LoadPromptsNode LoadActionsNode LoadExceptionsNode "
                          "LoadExistingNodesInRecordSelector LoadData"},
        {"Node_AUTO", "hidden LoadExistingNodesInRecordSelector LoadData"},
        {"Node_General_Pool", "hidden LoadData"},
        {"Detail_AUTO_Action", "hidden LoadData"},
        {"Detail_DTMF_Action", "shown "},
    }};
    Person person;
    for (const auto& [table, outcome] : cases) {
        const TestStore store;
        store.Execute(std::string("DROP TABLE ") + table);
        Business_Rules rules;
        const bool appeared = person.Edit(rules, 1, [] {});
        EXPECT_EQ((appeared ? "shown " : "hidden ") + Reporters(person.Boxes()), outcome) << table;
        EXPECT_EQ(rules.Opened(), outcome == std::string("shown ")) << table;
    }
    const TestStore store;
    store.Execute("DROP TABLE Detail_AUTO_Prompts");
    EXPECT_FALSE(person.Edit(1, [] {}));
    EXPECT_EQ(person.Boxes(),
              std::vector{ErrorReport("Source: SQLite - LoadData \r\nDescription: no such table: "
                                      "Detail_AUTO_Prompts (command Get_AUTO_PromptsNode, file '" +
                                      store.File().string() + "')")});
    std::filesystem::remove(store.File());
    EXPECT_FALSE(person.Edit(1, [] {}));
    EXPECT_EQ(
        Reporters(person.Boxes(), store.File().string()),
        "LoadNodeName LoadPromptsNode LoadActionsNode LoadExceptionsNode LoadExistingNodesInRecordSelector "
        "LoadData");
    EXPECT_FALSE(std::filesystem::exists(store.File()));
}

TEST(EditorOpens, NotWhereTheStoresPlaceCannotBeRead) {
    const TestStore store;
    const TemporaryFolder configured;
    EnvironmentVariable configurationFolders("XDG_CONFIG_DIRS");
    configurationFolders.Set(configured.Path().string());
    std::filesystem::create_directories(configured.Path() / "Brevank" / "Parlon+");
    std::ofstream(configured.Path() / "Brevank" / "Parlon+" / "registry.reg")
        << "REGEDIT4\r\n\r\n"
           "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders]\r\n"
           "\"Common AppData\"=hex(5):00,00,00,01\r\n";
    Person person;
    Business_Rules rules;
    {
        EnvironmentVariable programData("PROGRAMDATA");
        programData.Set((configured.Path() / "none").string());
        try {
            const Business_Rules other;
            ADD_FAILURE() << "made without a place for the store";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(static_cast<int>(error.Number()), 1001);
        }
        // The window's own object is made while it opens.
        EXPECT_FALSE(person.Edit(rules, 1, [] {}));
        EXPECT_EQ(person.Boxes(),
                  std::vector{ErrorReport(
                      "Source: KAL_AUTO_Node - ShowNodeEditor \r\nDescription: Unsupported value type")});
    }
    EXPECT_TRUE(person.Edit(rules, 1, [] { EXPECT_EQ(Title(), "Main menu"); }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

// The reference lists by themselves, as far as the window does not show them.
class ReferenceLists : public testing::Test {
  protected:
    void Load(const std::string& sql) {
        const TestStore store;
        store.Execute(sql);
        const ComponentFactory components;
        NodeRules rules(components);
        gui_ = std::make_unique<GUI>();
        gui_->CreateNodeLists();
        gui_->ConfigID = 1;
        gui_->PartitionID = 2;
        rules.LoadNodeName(*gui_);
        rules.LoadPromptsNode(*gui_);
        rules.LoadActionsNode(*gui_);
        rules.LoadExceptionsNode(*gui_);
    }

    [[nodiscard]] std::string Limits(std::initializer_list<const char*> types) const {
        std::string limits;
        for (const char* type : types) {
            limits += std::to_string(gui_->Lists().MaxNodeNumberCollection[type]) + ' ';
        }
        return limits;
    }

    // What a picker offers, and what it leaves out for want of numbers.
    [[nodiscard]] std::string Types(Slot slot) const {
        std::string types = Entries(*gui_->NodePicker(slot));
        for (const QString& name : gui_->Lists().*RuleOf(slot).notAvailable) {
            types += " -" + name.toStdString();
        }
        return types;
    }

    Person person_;
    std::unique_ptr<GUI> gui_;
};

TEST_F(ReferenceLists, TakeLimitsFromTheStoreOrTheirRules) {
    Load("DELETE FROM Node_Type_Max WHERE NodeType_ID = 5; INSERT INTO Node_Type_Max VALUES (1, 2, 818, 7)");
    EXPECT_EQ(Limits({"0", "5", "9", "13", "814", "816", "817", "818"}), "250 0 40 0 0 999 250 7 ");
    EXPECT_EQ(person_.Boxes(), std::vector<Box>{});
    // 817 and 818 have nothing to stand in for them without messages.
    Load("DELETE FROM SR_Node_Type_Names WHERE ID = 0; DELETE FROM SR_Node_Type_can_contain_Node_Type");
    EXPECT_EQ(gui_->Lists().NodeNameCollection["817"], "M_ON");
    EXPECT_EQ(Limits({"9", "816"}), "40 999 ");
    EXPECT_EQ(Reporters(person_.Boxes(), "\"0\""), "LoadNodeName");
    // A type that is listed twice ends the procedure, not the next ones.
    Load("CREATE TABLE Plain AS SELECT * FROM SR_Node_Type_Names; DROP TABLE SR_Node_Type_Names; ALTER TABLE "
         "Plain "
         "RENAME TO SR_Node_Type_Names; INSERT INTO SR_Node_Type_Names VALUES (999, 'AGAIN')");
    EXPECT_EQ(Types(Slot::Prompts), "MSG TIME LIST SPEAK M_ON M_OFF EMPTY");
    EXPECT_EQ(Reporters(person_.Boxes(), "\"999\""), "LoadNodeName");
}

TEST_F(ReferenceLists, OfferTypesWithNumbers) {
    // Limits of MSG and XFER, which types prompts and then actions offer and leave out. SPEAK has no limit.
    constexpr std::array<std::array<const char*, 3>, 7> cases = {{
        {"(1, 2, 0, 1), (1, 2, 4, 1)", "MSG XFER SPEAK", "MSG XFER SPEAK"},
        {"(1, 2, 0, 0), (1, 2, 4, 5)", "XFER SPEAK -MSG", "XFER -MSG"},
        {"(1, 2, 0, -3), (1, 2, 4, -1)", "SPEAK -MSG -XFER", " -MSG -XFER"},
        {"(1, 2, 4, 5)", "MSG XFER SPEAK", "XFER"},
        {"(1, 2, 0, 9)", "MSG XFER SPEAK", "MSG XFER SPEAK"},
        {"(1, 1, 0, 5), (2, 2, 4, 5)", "MSG XFER SPEAK", ""}, // others' limits
        {"(1, 2, 0, 9); DELETE FROM SR_Node_Type_can_contain_Node_Type WHERE Set_ID = 6 AND "
         "Child_Node_Type_ID = 0",
         "MSG XFER SPEAK", ""}, // messages that actions do not refer to
    }};
    for (const auto& [limits, prompts, actions] : cases) {
        Load("DELETE FROM SR_Node_Type_can_contain_Node_Type; INSERT INTO SR_Node_Type_can_contain_Node_Type "
             "VALUES "
             "(9, 7, 0), (9, 7, 4), (9, 7, 816), (9, 6, 0), (9, 6, 4), (9, 6, 816), (8, 6, 7);"
             "DELETE FROM Node_Type_Max; INSERT INTO Node_Type_Max VALUES " +
             std::string(limits));
        EXPECT_EQ(Types(Slot::Prompts), prompts) << limits;
        EXPECT_EQ(Types(Slot::Actions), actions) << limits;
    }
    EXPECT_EQ(person_.Boxes(), std::vector<Box>{});
}

TEST_F(ReferenceLists, ReadASetForEachPicker) {
    constexpr std::array<int, 7> sets = {7, 6, 1, 3, 5, 8, 9};
    std::string sql = "DELETE FROM SR_Node_Type_can_contain_Node_Type; DELETE FROM Node_Type_Max;";
    for (const int set : sets) {
        for (const int type : {20 + set, 30 + set}) {
            const std::string id = std::to_string(type);
            sql += "INSERT INTO SR_Node_Type_can_contain_Node_Type VALUES (9, " + std::to_string(set) + ", " +
                   id + "); INSERT INTO SR_Node_Type_Names VALUES (" + id + ", 'N" + id +
                   "'); INSERT INTO Node_Type_Max VALUES (1, 2, " + id + ", " + (type < 30 ? "1" : "0") +
                   ");";
        }
    }
    Load(sql);
    for (std::size_t i = 0; i < sets.size(); ++i) {
        const std::string set = std::to_string(sets[i]);
        EXPECT_EQ(Types(static_cast<Slot>(i)), "N2" + set + " -N3" + set) << TypePickers[i];
        EXPECT_EQ(gui_->NodePicker(static_cast<Slot>(i))->objectName(), TypePickers[i]);
    }
    EXPECT_EQ(person_.Boxes(), std::vector<Box>{});
}

} // namespace
} // namespace KAL_AUTO_Node
