#include "testing/OwnSettings.h"
#include "testing/Person.h"

#include <QScreen>

#include <chrono>

namespace KAL_AUTO_Node {
namespace {

// The procedures that reported a failure, in order; a box that is no such report stands there as it is.
std::string Reporters(const std::vector<Box>& boxes) {
    static const QRegularExpression form("^Source: [^\r]+ - (\\w+ )\r\nDescription: .+$");
    std::string reporters;
    for (const Box& box : boxes) {
        const auto match = form.match(QString::fromStdString(box.text));
        reporters += match.hasMatch() ? match.captured(1).toStdString() : testing::PrintToString(box);
    }
    return reporters;
}

// The navigation buttons that can be pressed, the position, the entry of the selector and the label.
std::string Place() {
    std::string place;
    for (const std::string button : {"First", "Previous", "Next", "Last"}) {
        place += Person::Button("cmd" + button)->isEnabled() ? button + ' ' : "";
    }
    return place + Person::Find<QLabel>("lblRecordPosition")->text().toStdString() + ", " +
           Person::Text("cmbNode") + ' ' + Person::Label();
}

TEST(EditorOpens, AnOlderStoreIsBroughtUpWhereThatIsWanted) {
    const TestStore store;
    store.Execute("DROP INDEX Node_AUTO_Unfinished; ALTER TABLE Node_AUTO_Version DROP COLUMN Machine");
    store.Execute(TestStore::OnServer() ? "COMMENT ON TABLE Node_AUTO IS 'A store of auto-node, version 1'"
                                        : "PRAGMA user_version = 1");
    Person person;
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes, QMessageBox::NoButton}) {
        const bool asks = answer != QMessageBox::NoButton;
        const bool tells = answer == QMessageBox::Yes && !TestStore::OnServer();
        if (asks) {
            person.WillAnswer({answer});
        }
        EXPECT_TRUE(person.Edit(8, [&] {
            const auto boxes = person.Boxes();
            ASSERT_EQ(boxes.size(), (asks ? 1U : 0U) + (tells ? 1U : 0U));
            EXPECT_EQ(Person::Label(), "Sales");
            Person::TypeLabel("Sales");
            Person::Press("cmdApply");
        }));
    }
}

TEST(EditorOpens, WithRowsAsTheyAreStored) {
    const TestStore store;
    store.Execute(R"(
        INSERT INTO Node_General_Pool VALUES (1, 2, 999, 1, 'EMPTY', 'A label all the same', NULL), (1, 2, 814, 3, 'NONE', 'Odd', NULL),
            (2, 2, 0, 777, 'MSG', 'Of another configuration', NULL), (1, 1, 0, 777, 'MSG', 'Elsewhere', NULL);
        UPDATE Node_General_Pool SET NodeDescription = 'Genève)" +
                  std::string(1000, 'x') + R"(' WHERE PartID = 2 AND NodeTypeID = 0 AND NodeNumber = 12;
        INSERT INTO Detail_AUTO_Prompts VALUES (1, 2, 12, 999, 1, 2, 'BEEP'), (1, 2, 3, 2, 2, 2, 'OLD'),
            (1, 2, 2, 814, 4, 2, 'NONE'), (1, 2, 41, 0, 777, 2, 'MSG');
        INSERT INTO Detail_AUTO_Action VALUES (1, 2, 5, 999, 9, 2, NULL, '77', 'BEEP'),
            (1, 2, 2, 814, 0, 2, '5', NULL, 'NONE'), (1, 2, 7, 0, 12, 2, '007', '0099', 'MSG');
        UPDATE Node_AUTO SET (TimeoutNodeTypeID, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeTypeID,
            InvalidNodeType, InvalidNodeNumber) = (814, 'STAY', 3, 999, 'BEEP', 1) WHERE NodeNumber = 2)");
    Person person;
    EXPECT_TRUE(person.Edit(2, [] {
        EXPECT_EQ(
            Person::Rows("LVPrompts"),
            (Texts{"2a: 2|2|NONE 4||NONE|814|4", "3a: 3|3|OLD 2|Office open|TIME|2|2",
                   "12a: 12|12|BEEP|A label all the same|EMPTY|999|1", "41a: 41|41|MSG 777||MSG|0|777"}));
        EXPECT_EQ(Person::Rows("LVActions"),
                  (Texts{"2a: 2|0-0|NONE 0||NONE|814|0|0|0", "5a: 5|0-0|BEEP||EMPTY|999|9|0|0",
                         "7a: 7|007-0099|MSG 12|Genève" + std::string(994, 'x') + "…|MSG|0|12|007|0099"}));
        EXPECT_EQ(Person::Rows("LVExceptions")[0], "1a: 1|Timeout|STAY|Odd|NONE|814|3");
        EXPECT_EQ(Person::Rows("LVExceptions")[1], "2a: 2|Invalid|BEEP 1|A label all the same|EMPTY|999|1");
        Person::Press("cmdExceptionsEdit");
        Person::ClickRow("LVExceptions", 0);
        EXPECT_EQ(Person::Rows("LVExceptions")[0], "1a: 1|Timeout|NONE||NONE|814|1");
        Person::Press("cmdExceptionsEdit");
        Person::MarkUnchanged();
        // A node without actions leaves none of the one before.
        Person::Choose("cmbNode", "AUTO 7");
        EXPECT_EQ(Person::Rows("LVPrompts"), (Texts{"1a: 1|1|EMPTY|A label all the same|EMPTY|999|1"}));
        EXPECT_EQ(Person::Count("LVActions"), 0);
    }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

TEST(EditorOpens, AtAPlaceAmongThePartitionsNodes) {
    const TestStore store;
    store.Execute("UPDATE Node_AUTO SET PartID = 1 WHERE NodeNumber = 7;"
                  "UPDATE Node_AUTO SET NodeNumber = -3 WHERE NodeNumber = 9");
    Person person;
    Business_Rules rules;
    const auto opened = [&](int partition, int node) {
        std::string place;
        const auto look = [&] {
            place = Place();
            EXPECT_EQ(Person::Combo("cmbNode")->isVisible(), node != 0);
            EXPECT_EQ(Person::Button("cmdFirst")->isVisible(), node != 0);
        };
        EXPECT_TRUE(person.Edit(rules, node, look, 1, partition));
        return place;
    };
    EXPECT_EQ(opened(1, 2), "First Previous Next Last 2 of 3, AUTO 2 Head office, by night");
    EXPECT_EQ(opened(1, 7), "First Previous 3 of 3, AUTO 7 Seasonal offers");
    EXPECT_EQ(opened(2, 0), "First Previous Next Last 2 of 17, AUTO 0 Menu template");
    // One that the selector does not list is saved under its own number all the same.
    EXPECT_TRUE(person.Edit(rules, -3, [&] {
        EXPECT_EQ(Place(), "Next Last 1 of 15, AUTO 1 Support");
        Person::TypeLabel("Saved");
        Person::Press("cmdApply");
    }));
    EXPECT_EQ(store.Rows("SELECT NodeNumber FROM Node_AUTO WHERE NodeDescription = 'Saved'"), Texts{"-3"});
    store.Execute("DELETE FROM Node_AUTO WHERE PartID = 1 AND NodeNumber <> 2");
    EXPECT_EQ(opened(1, 2), "1 of 1, AUTO 2 Head office, by night");
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

// What is on screen after a load that failed, and what has no node any more, is never written.
TEST(EditorOpens, ForSavingOnlyWhatItLoaded) {
    const TestStore store;
    Person person;
    const std::string notLoaded =
        "AUTO 2 could not be loaded, and what is shown here is not its content. It is not saved.";
    const auto content = [&] {
        return store.Rows(
            "SELECT NodeNumber, NodeDescription FROM Node_AUTO UNION ALL SELECT NodeMasterID, NodeType"
            " FROM Detail_AUTO_Prompts");
    };
    const auto expectRefusal = [&](const std::string& told) {
        const Texts before = content();
        Person::TypeLabel("Of another node");
        Person::Press("cmdApply");
        EXPECT_EQ(person.Boxes(), std::vector<Box>{Information(told)});
        EXPECT_TRUE(Person::Dirty());
        EXPECT_EQ(content(), before);
    };
    EXPECT_TRUE(person.Edit(1, [&] {
        store.Execute("UPDATE Node_AUTO SET PoundNodeTypeID = 900 WHERE PartID = 2 AND NodeNumber = 2");
        Person::Press("cmdNext");
        EXPECT_EQ(Reporters(person.Boxes()), "LoadData ");
        EXPECT_EQ(Place(), "Next Last 1 of 17, AUTO 2 Not built yet") << "as far as it could be read";
        EXPECT_EQ(Person::Count("LVExceptions"), 4);
        expectRefusal(notLoaded);
        store.Execute("UPDATE Node_AUTO SET PoundNodeTypeID = 814 WHERE PartID = 2 AND NodeNumber = 2");
        expectRefusal(notLoaded);
        // Loading it ends that.
        person.WillAnswer({QMessageBox::No});
        Person::Choose("cmbNode", "AUTO 3");
        Person::Choose("cmbNode", "AUTO 2");
        EXPECT_EQ(person.Boxes(), std::vector<Box>{SaveQuestion()});
        Person::TypeLabel("Its own");
        Person::Press("cmdApply");
        EXPECT_FALSE(Person::Dirty());

        store.Execute("DELETE FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 2");
        expectRefusal("AUTO 2 doesn't exist any more. It is not saved.");
        Person::MarkUnchanged();
        Person::Choose("cmbNode", "AUTO 3");
        Person::Choose("cmbNode", "AUTO 2");
        EXPECT_EQ(person.Boxes(), std::vector<Box>{Information("AUTO 2 doesn't exist.")});
        EXPECT_EQ(Person::Text("cmbNode"), "AUTO 2");
        expectRefusal(notLoaded);
    }));
}

TEST(EditorOpens, AsFarAsItsProceduresGet) {
    const std::string types = "LoadPromptsNode LoadActionsNode LoadExceptionsNode ";
    const std::array<std::array<std::string, 2>, 7> cases = {{
        {"DROP TABLE SR_Node_Type_can_contain_Node_Type", "shown " + types},
        {"DROP TABLE Node_Type_Max", "LoadNodeName " + types + "LoadExistingNodesInRecordSelector LoadData "},
        {"DROP TABLE Node_AUTO", "LoadExistingNodesInRecordSelector LoadData "},
        {"DROP TABLE Detail_AUTO_Action", "LoadData "},
        {"DROP TABLE Detail_DTMF_Action", "shown "},
        {"INSERT INTO SR_Node_Type_can_contain_Node_Type VALUES (9, 7, 900)", "shown LoadPromptsNode "},
        {"UPDATE Node_AUTO SET NodeDescription = '" + std::string(100'001, 'x') + '\'', "LoadData "},
    }};
    Person person;
    // Who reads a report is not kept waiting by the pointer.
    person.LookAtBox = [](const QMessageBox&) { EXPECT_EQ(Person::Pointer(), Qt::ArrowCursor); };
    for (const auto& [sql, outcome] : cases) {
        const TestStore store;
        store.Execute(sql);
        Business_Rules rules;
        const std::string shown = person.Edit(rules, 1, [] {}) ? "shown " : "";
        EXPECT_EQ(shown + Reporters(person.Boxes()), outcome) << sql;
        EXPECT_EQ(rules.Opened(), outcome == "shown ") << sql;
    }
    // Each tells of a lock that lasts, and one of them waits for it.
    if (!TestStore::OnServer()) {
        const TestStore store;
        SQLite::Database other(store.File().string(), SQLite::OPEN_READWRITE);
        other.exec("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE");
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_FALSE(person.Edit(1, [] {}));
        EXPECT_EQ(Reporters(person.Boxes()),
                  "LoadNodeName " + types + "LoadExistingNodesInRecordSelector LoadData ");
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(4));
    }
}

TEST(EditorOpens, NotWhereTheStoresPlaceCannotBeRead) {
    const TemporaryFolder folder;
    const EnvironmentVariable programData("PROGRAMDATA");
    const EnvironmentVariable configurationFolders("XDG_CONFIG_DIRS");
    programData.Set((folder.Path() / "none").string());
    configurationFolders.Set(folder.Path().string());
    Person person;
    Business_Rules rules;
    std::filesystem::create_directories(folder.Path() / "Brevank" / "Parlon+");
    std::ofstream(folder.Path() / "Brevank" / "Parlon+" / "registry.reg")
        << "REGEDIT4\n[HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders]\n";
    try {
        const Business_Rules other;
        ADD_FAILURE() << "nothing thrown";
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), 1001);
    }
    // The window's own object is made while it opens.
    EXPECT_FALSE(person.Edit(rules, 1, [] {}));
    EXPECT_EQ(person.Boxes(), std::vector{ErrorBox("Source: KAL_AUTO_Node - ShowNodeEditor \r\n"
                                                   "Description: Unsupported value type")});
}

TEST(EditorOpens, WhereThePersonHasLeftIt) {
    const TestStore store;
    const OwnSettings own;
    const std::string file = own.Path().toStdString() + "/KAL_AUTO_Node/auto-node.conf";
    const auto opensAt = [&](const QRect& then = {}) {
        QRect place;
        Person::Edit(1, [&] {
            QWidget* window = Person::Window("GUI");
            place = window->geometry();
            window->setGeometry(then.isNull() ? place : then);
        });
        return place;
    };
    const QRect chosen = opensAt().adjusted(-7, 9, -7, -5);
    const QRect first = opensAt(chosen);
    EXPECT_EQ(opensAt({9000, 9000, 5000, 5000}), chosen);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(screen.contains(opensAt())) << "of another screen";
    // What is no place of this program's is left alone.
    for (const char* text : {"\x01\x02[[", "version=1\n[places]\nGUI=x\n", "version=2\n[places]\nGUI=x\n"}) {
        std::ofstream(file, std::ios::trunc) << text;
        EXPECT_EQ(opensAt().size(), first.size()) << text;
    }
    EXPECT_EQ(BytesOf(file), "version=2\n[places]\nGUI=x\n");
}

} // namespace
} // namespace KAL_AUTO_Node
