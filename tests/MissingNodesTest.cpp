#include "Person.h"
#include "TestStore.h"

#include <algorithm>
#include <set>

namespace KAL_AUTO_Node {
namespace {

using Rows = std::vector<std::string>;

using enum QMessageBox::StandardButton;

// What AUTO 6 refers to without its being there, in the order of its lists.
const Rows MissingInAuto6 = {"MSG 240", "MSG 241", "TIME 19", "LIST 14", "CMD 30",  "HOLD 4", "DATE 18",
                             "DTMF 21", "VOX 9",   "PAAS 7",  "DBN 8",   "AUTO 33", "MSG 242"};

std::string Question(const std::string& node) {
    return node + " is referenced but it does not exist.\r\nDo you want to auto create node '" + node + "'?";
}

std::vector<Box> Asked(const Rows& nodes) {
    std::vector<Box> boxes;
    for (const std::string& node : nodes) {
        boxes.push_back(
            {"Confirmation", Question(node), QMessageBox::Question, Yes | YesToAll | No | Cancel});
    }
    return boxes;
}

void ExpectReport(const Box& box, const std::string& procedure, const std::string& cause) {
    EXPECT_EQ(box, ErrorBox(box.text));
    EXPECT_NE(box.text.find(" - " + procedure + " \r\nDescription: "), std::string::npos) << box.text;
    EXPECT_NE(box.text.find(cause), std::string::npos) << box.text;
}

// A store of its own and a person who saves nodes of it.
class Check {
  public:
    // Changes a node's label and saves it; what the check does is done then. Every such save goes through.
    void Save(int node, ComponentFactory components = {}) {
        Business_Rules rules(std::move(components));
        EXPECT_TRUE(person.Edit(rules, node, [] {
            Person::TypeLabel("Saved");
            Person::Press("cmdApply");
            EXPECT_FALSE(Person::Dirty());
            Person::ExpectIdle();
        }));
        EXPECT_EQ(store.Rows("SELECT NodeNumber FROM Node_AUTO WHERE NodeDescription = 'Saved'"),
                  Rows{std::to_string(node)});
        EXPECT_FALSE(person.HasAnswersLeft());
    }

    // The nodes registered today, by type and number.
    [[nodiscard]] Rows Created() const {
        return store.Rows("SELECT NodeType || ' ' || NodeNumber AS Node FROM Node_General_Pool"
                          " WHERE NodeDescription <> 'Saved' AND DateModified = '" +
                          ShortDateOfToday() + "' ORDER BY Node");
    }

    TestStore store;
    Person person;
};

TEST(MissingNodes, AreAskedAboutOnceEachInTheOrderOfTheLists) {
    Check check;
    check.person.LookAtBox = [](QMessageBox&) {
        EXPECT_EQ(Person::Pointer(), Qt::ArrowCursor);
        EXPECT_FALSE(Person::Find<QFrame>("Frame1")->isEnabled());
        EXPECT_TRUE(Person::Find<QStatusBar>("StatusBar1")->isVisible());
    };
    check.person.WillAnswer({No, No, No, No, No, No, No, No, No, No, No, No, No});
    check.Save(6);
    EXPECT_EQ(check.person.Boxes(), Asked(MissingInAuto6));
    EXPECT_EQ(check.Created(), Rows{});
}

// A collected text that begins with the new one stands for it, whatever the case; references that are no
// nodes are never looked up.
TEST(MissingNodes, AreCollectedByTheBeginningOfTheirText) {
    Check check;
    check.store.Execute(
        "INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType,"
        " NodeNumber) VALUES (1, 2, 2, 1, 0, 'MSG', 990), (1, 2, 2, 2, 0, 'MSG', 99),"
        " (1, 2, 2, 3, 0, 'MSG', 98), (1, 2, 2, 4, 0, 'MSG', 980), (1, 2, 2, 5, 0, 'msg', 98),"
        " (1, 2, 2, 6, 999, 'EMPTY', 77), (1, 2, 2, 7, 816, 'SPEAK', 77), (1, 2, 2, 8, 814, 'NONE', 77),"
        " (1, 2, 2, 9, 817, 'M_ON', 97), (1, 2, 2, 10, 818, 'M_OFF', 97), (1, 2, 2, 11, 0, 'MSG', 97);"
        "UPDATE Node_AUTO SET TimeoutNodeTypeID = 816, TimeoutNodeNumber = 76, AbortNodeNumber = 98,"
        " StarNodeTypeID = 818, StarNodeNumber = 95 WHERE PartID = 2 AND NodeNumber = 2");
    check.person.WillAnswer({No, No, No, No, No});
    check.Save(2);
    EXPECT_EQ(check.person.Boxes(), Asked({"MSG 990", "MSG 98", "MSG 980", "MSG 97", "MSG 95"}));
}

TEST(MissingNodes, AreCreatedUntilThePersonHasHadEnough) {
    Check check;
    check.person.WillAnswer({Yes, No, Yes, Cancel});
    check.Save(6);
    EXPECT_EQ(check.person.Boxes(), Asked({"MSG 240", "MSG 241", "TIME 19", "LIST 14"}));
    EXPECT_EQ(check.Created(), (Rows{"MSG 240", "TIME 19"}));

    check.person.WillAnswer({Yes}); // the second box is closed
    check.Save(6);
    EXPECT_EQ(check.person.Boxes(), Asked({"MSG 241", "LIST 14"}));
    EXPECT_EQ(check.Created(), (Rows{"MSG 240", "MSG 241", "TIME 19"}));
}

TEST(MissingNodes, AnAnswerForAllHoldsForOneCheck) {
    Check check;
    EXPECT_TRUE(check.person.Edit(1, [&] {
        for (const char* number : {"5", "8"}) {
            check.store.Execute(
                "DELETE FROM Node_MSG WHERE PartID = 2 AND NodeNumber IN (2, 3);"
                "DELETE FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 0 AND NodeNumber IN (2, 3)");
            Person::Choose("cmbSelTimeOut", number);
            check.person.WillAnswer({YesToAll});
            Person::Press("cmdApply");
            EXPECT_EQ(check.person.Boxes(), Asked({"MSG 2"}));
        }
    }));
}

TEST(MissingNodes, OfEveryTypeAreCopiesOfTheirTemplate) {
    Check check;
    const TestStore& store = check.store;
    store.Execute("DELETE FROM Detail_AUTO_Action WHERE NodeMasterID = 6 AND NodeTypeID = 5;"
                  "INSERT INTO Detail_AUTO_Action VALUES (1, 2, 12, 4, 61, 6, '61', '61', 'XFER'),"
                  " (1, 2, 13, 13, 2, 6, '62', '62', 'TABLE'), (1, 2, 14, 0, 62, 6, '63', '63', 'MSG'),"
                  " (1, 2, 15, 0, 1000, 6, '64', '64', 'MSG');"
                  "UPDATE Node_General_Pool SET NodeDescription = 'Register of ' || NodeType"
                  " WHERE PartID = 2 AND NodeNumber = 0");
    check.person.WillAnswer({No, YesToAll});
    check.Save(6);
    EXPECT_EQ(check.person.Boxes(), Asked({"MSG 240", "MSG 241"}));
    EXPECT_EQ(check.Created(),
              (Rows{"AUTO 33", "CMD 30", "DATE 18", "DBN 8", "DTMF 21", "LIST 14", "MSG 1000", "MSG 241",
                    "MSG 242", "MSG 62", "PAAS 7", "TABLE 2", "TIME 19", "VOX 9", "XFER 61"}));
    EXPECT_EQ(store.Value("SELECT COUNT(*) FROM Node_General_Pool WHERE ConfigID = 1 AND PartID = 2"
                          " AND NodeNumber > 0 AND NodeDescription = 'Register of ' || NodeType"),
              "15");
    EXPECT_EQ(
        store.Rows("SELECT VexoFilename FROM Node_MSG WHERE PartID = 2 AND NodeNumber IN (62, 241, 1000)"),
        (Rows{"P02M062.wav", "P02M241.wav", "P02M1000.wav"}));

    for (const std::string& node : check.Created()) {
        const std::string type = node.substr(0, node.find(' '));
        for (const std::string& table :
             store.Rows("SELECT name FROM sqlite_master WHERE type = 'table' AND (name = 'Node_" + type +
                        "' OR name LIKE 'Detail_" + type + "%')")) {
            const std::string number = table.starts_with("Node_") ? "NodeNumber" : "NodeMasterID";
            const std::string columns =
                store.Value("SELECT GROUP_CONCAT(name) FROM pragma_table_info('" + table +
                            "') WHERE name NOT IN ('VexoFilename', '" + number + "')");
            const std::string rows =
                "SELECT " + columns + " FROM " + table + " WHERE PartID = 2 AND " + number + " = ";
            EXPECT_FALSE(store.Rows(rows + '0').empty()) << table;
            EXPECT_EQ(store.Rows(rows + node.substr(type.size())), store.Rows(rows + '0')) << table;
        }
    }
}

TEST(MissingNodes, ThatCannotBeCreatedAreNotSaidToBe) {
    Check check;
    check.store.Execute("DELETE FROM Node_LIST WHERE NodeNumber = 0;"
                        "DELETE FROM Node_General_Pool WHERE NodeTypeID IN (2, 8) AND NodeNumber = 0");
    std::set<std::string> told;
    const ToldInStatusBar watch([&](const std::string& text) { told.insert(text); });
    check.person.WillAnswer({YesToAll, Ok});
    check.Save(6);
    const auto boxes = check.person.Boxes();
    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(boxes[1], Information(boxes[1].text));
    for (const std::string& node : MissingInAuto6) {
        const bool created = node != "TIME 19" && node != "LIST 14" && node != "HOLD 4";
        EXPECT_EQ(told.contains(node + " is created."), created) << node;
        EXPECT_EQ(boxes[1].text.find(node) == std::string::npos, created) << boxes[1].text;
    }
    EXPECT_EQ(check.Created().size(), MissingInAuto6.size() - 3);
}

TEST(MissingNodes, AFailedCreationEndsTheCheckButNotTheSave) {
    Check check;
    check.store.Execute("INSERT INTO Detail_TIME VALUES (1, 2, 1, 0, 1, 19, 'MSG')");
    check.person.LookAtBox = [](QMessageBox&) { EXPECT_EQ(Person::Pointer(), Qt::ArrowCursor); };
    check.person.WillAnswer({YesToAll, Ok});
    check.Save(6);
    const auto boxes = check.person.Boxes();
    ASSERT_EQ(boxes.size(), 2U);
    ExpectReport(boxes[1], "CheckForUnReferencedNodes", "Detail_TIME");
    EXPECT_EQ(check.Created(), (Rows{"MSG 240", "MSG 241"}));
    EXPECT_EQ(check.store.Value("SELECT COUNT(*) FROM Node_TIME WHERE NodeNumber = 19"), "1");
}

TEST(MissingNodes, AreThoseThatCannotBeLookedUpToo) {
    Check check;
    EXPECT_TRUE(check.person.Edit(3, [&] {
        check.store.Execute("ALTER TABLE Node_General_Pool RENAME TO Elsewhere");
        Person::TypeLabel("Saved");
        check.person.WillAnswer({Ok, Cancel, Ok});
        Person::Press("cmdApply");
    }));
    const auto boxes = check.person.Boxes();
    ASSERT_EQ(boxes.size(), 3U);
    ExpectReport(boxes[0], "IsNodeExisted", "Node_General_Pool");
    EXPECT_EQ(boxes[1], Asked({"MSG 50"}).front());
    ExpectReport(boxes[2], "SaveChanges", "Node_General_Pool");
}

// A host's own dialog: answers with its codes in order and keeps what it was asked.
class HostDialog : public ConfirmationDialog {
  public:
    HostDialog(std::vector<std::int32_t> codes, Rows& asked) : codes_(std::move(codes)), asked_(asked) {}

    ~HostDialog() override { asked_.emplace_back("released"); }

    std::int32_t Ask(std::int16_t kind, const std::string& message, std::int32_t icon, std::int32_t buttons,
                     const std::string& title) override {
        EXPECT_EQ(std::tuple(kind, icon, buttons, title), std::tuple(1, 1, 7, "Confirmation"));
        EXPECT_EQ(Person::Pointer(), Qt::ArrowCursor);
        asked_.push_back(message);
        return codes_.at(asked_.size() - 1);
    }

  private:
    std::vector<std::int32_t> codes_;
    Rows& asked_;
};

TEST(MissingNodes, AreTheHostsDialogsBusinessWhereItHasOne) {
    const std::string identifier = "{943DE27E-7610-41A9-967B-7E45E79530D7}";
    const Rows most = {"AUTO 33", "DBN 8", "DTMF 21", "MSG 241", "MSG 242", "PAAS 7", "VOX 9"};
    for (const auto& [codes, created] : {std::pair{std::vector{3, 2, 7, -1, 1, 99999, 6, 4}, most},
                                         {{2, 0}, {"MSG 240"}},
                                         {{2, 3, 5}, {"MSG 240"}}}) {
        SCOPED_TRACE(testing::PrintToString(codes));
        Check check;
        Rows asked;
        ComponentFactory factory;
        factory.Register(identifier,
                         [&, codes = codes] { return std::make_unique<HostDialog>(codes, asked); });
        check.Save(6, factory);
        Rows expected(MissingInAuto6.begin(), MissingInAuto6.begin() + static_cast<int>(codes.size()));
        std::ranges::transform(expected, expected.begin(), Question);
        expected.emplace_back("released");
        EXPECT_EQ(asked, expected);
        EXPECT_EQ(check.Created(), created);
        EXPECT_EQ(check.person.Boxes(), std::vector<Box>{});
    }
    Check check;
    ComponentFactory none;
    none.Register(identifier, [] { return nullptr; });
    check.Save(6, none);
    const auto boxes = check.person.Boxes();
    ASSERT_EQ(boxes.size(), 1U);
    ExpectReport(boxes[0], "CheckForUnReferencedNodes", identifier);
    EXPECT_EQ(check.Created(), Rows{});
}

} // namespace
} // namespace KAL_AUTO_Node
