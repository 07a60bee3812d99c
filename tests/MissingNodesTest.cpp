#include "testing/Person.h"

namespace KAL_AUTO_Node {
namespace {

using enum QMessageBox::StandardButton;

// What AUTO 6 refers to without its being there, in the order of its lists.
const Texts MissingInAuto6 = {"MSG 240", "MSG 241", "TIME 19", "LIST 14", "CMD 30",  "HOLD 4", "DATE 18",
                              "DTMF 21", "VOX 9",   "PAAS 7",  "DBN 8",   "AUTO 33", "MSG 242"};

std::string Question(const std::string& node) {
    return node + " is referenced but it does not exist.\r\nDo you want to auto create node '" + node + "'?";
}

std::vector<Box> Asked(const Texts& nodes) {
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
                  Texts{std::to_string(node)});
        EXPECT_FALSE(person.HasAnswersLeft());
    }

    // The nodes registered today, by type and number.
    [[nodiscard]] Texts Created() const {
        return store.Rows("SELECT NodeType || ' ' || NodeNumber AS Node FROM Node_General_Pool"
                          " WHERE NodeDescription <> 'Saved' AND DateModified = '" +
                          ShortDateOfToday() + "' ORDER BY Node");
    }

    TestStore store;
    Person person;
};

TEST(MissingNodes, AreAskedAboutInTheOrderOfTheListsUntilThePersonHasHadEnough) {
    Check check;
    check.person.LookAtBox = [](QMessageBox&) {
        EXPECT_EQ(Person::Pointer(), Qt::ArrowCursor);
        EXPECT_TRUE(!Person::Find<QFrame>("Frame1")->isEnabled() &&
                    Person::Find<QFrame>("Frame1")->updatesEnabled());
        EXPECT_TRUE(Person::Find<QStatusBar>("StatusBar1")->isVisible());
    };
    check.person.WillAnswer({Yes, No, Yes, Cancel});
    check.Save(6);
    EXPECT_EQ(check.person.Boxes(), Asked({"MSG 240", "MSG 241", "TIME 19", "LIST 14"}));
    EXPECT_EQ(check.Created(), (Texts{"MSG 240", "TIME 19"}));
    check.person.WillAnswer({Yes}); // the second box is closed
    check.Save(6);
    EXPECT_EQ(check.person.Boxes(), Asked({"MSG 241", "LIST 14"}));
    // Those that are left, each once.
    Texts left(MissingInAuto6.begin() + 3, MissingInAuto6.end());
    check.person.WillAnswer({No, No, No, No, No, No, No, No, No, No});
    check.Save(6);
    EXPECT_EQ(check.person.Boxes(), Asked(left));
    EXPECT_EQ(check.Created(), (Texts{"MSG 240", "MSG 241", "TIME 19"}));
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

TEST(MissingNodes, ThatCannotBeCreatedAreNotSaidToBe) {
    Check check;
    check.store.Execute(
        "DELETE FROM Node_LIST WHERE NodeNumber = 0;"
        "DELETE FROM Node_General_Pool WHERE NodeTypeID IN (2, 8) AND NodeNumber = 0;"
        "INSERT INTO Detail_AUTO_Action WITH RECURSIVE N (i) AS (SELECT 50 UNION ALL SELECT i + 1"
        " FROM N WHERE i < 70) SELECT 1, 2, i, 5, i, 6, i, i, 'HOLD' FROM N");
    std::set<std::string> told;
    const ToldInStatusBar watch([&](const std::string& text) { told.insert(text); });
    check.person.WillAnswer({YesToAll, Ok});
    check.Save(6);
    const auto boxes = check.person.Boxes();
    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(
        boxes[1],
        Information(
            "These nodes could not be created: there is no template for them.\r\nHOLD 4, HOLD 50, HOLD 51, "
            "HOLD 52, HOLD 53, HOLD 54, HOLD 55, HOLD 56, HOLD 57, HOLD 58, HOLD 59, HOLD 60, HOLD 61, HOLD "
            "62, "
            "HOLD 63, HOLD 64, HOLD 65, HOLD 66, HOLD 67, HOLD 68 and 2 more\r\n\r\n"
            "The rows of these nodes were copied, but they are not registered: their template "
            "has no row in Node_General_Pool.\r\nTIME 19, LIST 14"));
    for (const std::string& node : MissingInAuto6) {
        const bool created = node != "TIME 19" && node != "LIST 14" && node != "HOLD 4";
        EXPECT_EQ(told.contains(node + " is created."), created) << node;
    }
    EXPECT_EQ(check.Created().size(), MissingInAuto6.size() - 3);
    EXPECT_EQ(check.store.Value("SELECT COUNT(*) FROM Node_Creation WHERE NodeTypeID = 5"), "0");
}

TEST(MissingNodes, AFailedCreationEndsTheCheckButNotTheSave) {
    // Half-way, and before anything is written.
    const std::string half = TestStore::OnServer() ? "0" : "1";
    for (const auto& [before, table, rows, marks] :
         {std::tuple{"INSERT INTO Detail_TIME VALUES (1, 2, 1, 0, 1, 19, 'MSG')", "Detail_TIME", half, half},
          {"UPDATE Node_TIME SET NodeNumber = 19 WHERE PartID = 2 AND NodeNumber = 1", "Node_TIME", "1",
           "0"}}) {
        Check check;
        check.store.Execute(before);
        check.person.LookAtBox = [](QMessageBox&) { EXPECT_EQ(Person::Pointer(), Qt::ArrowCursor); };
        check.person.WillAnswer({YesToAll, Ok});
        check.Save(6);
        const auto boxes = check.person.Boxes();
        ASSERT_EQ(boxes.size(), 2U);
        ExpectReport(boxes[1], "CheckForUnReferencedNodes", table);
        EXPECT_EQ(check.Created(), (Texts{"MSG 240", "MSG 241"}));
        EXPECT_EQ(check.store.Value("SELECT COUNT(*) FROM Node_TIME WHERE NodeNumber = 19"), rows);
        EXPECT_EQ(check.store.Value("SELECT COUNT(*) FROM Node_Creation WHERE NodeTypeID = 2"), marks);
    }
}

TEST(MissingNodes, AreThoseThatCannotBeLookedUpToo) {
    Check check;
    EXPECT_TRUE(check.person.Edit(3, [&] {
        check.store.Execute("ALTER TABLE Node_General_Pool RENAME TO Elsewhere");
        Person::TypeLabel("Saved");
        check.person.WillAnswer({Ok, Cancel, Ok, No});
        Person::Press("cmdApply");
    }));
    const auto boxes = check.person.Boxes();
    ASSERT_EQ(boxes.size(), TestStore::OnServer() ? 3U : 4U) << "the last offers to put the node back";
    ExpectReport(boxes[0], "IsNodeExisted", "Node_General_Pool");
    EXPECT_EQ(boxes[1], Asked({"MSG 50"}).front());
    ExpectReport(boxes[2], "SaveChanges", "Node_General_Pool");
}

// A host's own dialog: answers with its codes in order and keeps what it was asked.
class HostDialog : public ConfirmationDialog {
  public:
    HostDialog(std::vector<std::int32_t> codes, Texts& asked) : codes_(std::move(codes)), asked_(asked) {}

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
    Texts& asked_;
};

TEST(MissingNodes, AreTheHostsDialogsBusinessWhereItHasOne) {
    const std::string identifier = "{943DE27E-7610-41A9-967B-7E45E79530D7}";
    const Texts most = {"AUTO 33", "DBN 8", "DTMF 21", "MSG 241", "MSG 242", "PAAS 7", "VOX 9"};
    for (const auto& [codes, created] : {std::pair{std::vector{3, 2, 7, -1, 1, 99999, 6, 4}, most},
                                         {{2, 0}, {"MSG 240"}},
                                         {{2, 3, 5}, {"MSG 240"}}}) {
        SCOPED_TRACE(testing::PrintToString(codes));
        Check check;
        Texts asked;
        ComponentFactory factory;
        factory.Register(identifier,
                         [&, codes = codes] { return std::make_unique<HostDialog>(codes, asked); });
        check.Save(6, factory);
        Texts expected(MissingInAuto6.begin(), MissingInAuto6.begin() + static_cast<int>(codes.size()));
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
    EXPECT_EQ(check.Created(), Texts{});
}

} // namespace
} // namespace KAL_AUTO_Node
