#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "nodes/Overview.h"
#include "nodes/RequiredNodes.h"
#include "nodes/Templates.h"
#include "nodes/TypeCatalogue.h"
#include "platform/RuntimeError.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <map>

namespace KAL_AUTO_Node {
namespace {

constexpr Partition Demo{1, 2};

class Nodes : public testing::Test {
  protected:
    [[nodiscard]] AutoNode Read(int number, Labels labels = Labels::Leave) {
        return ReadAutoNode(dataBase_, {Demo, static_cast<std::int16_t>(number)}, labels).value();
    }

    const TestStore store_;
    DataBase dataBase_;
};

ErrorNumber Raised(const std::function<void()>& use) {
    try {
        use();
    } catch (const RuntimeError& error) {
        return error.Number();
    }
    return {};
}

TEST_F(Nodes, ComeBackAsTheyWereWritten) {
    AutoNode node = Read(15);
    node.label = "Żółć '; DROP TABLE Node_AUTO;--";
    node.settings = {7, "*/#", 5, 60, 15};
    node.prompts = {{1, {999, "EMPTY", 1, {}}}, {2, {0, "MSG", 12, {}}}};
    node.actions = {{1, {9, "AUTO", 8, {}}, "007", "0099"}, {2, {0, "MSG", 1, {}}, "0", "0"}};
    for (int branch = 0; branch < 5; ++branch) {
        node.branches.at(static_cast<std::size_t>(branch)) = {
            branch, "T" + std::to_string(branch), 70 + branch, {}};
    }
    WriteAutoNode(dataBase_, {Demo, 15}, node, "today");
    EXPECT_EQ(Read(15), node);
    EXPECT_EQ(Differences(Read(15), node), Texts{});
    EXPECT_EQ(store_.Rows("SELECT NodeDescription, DateModified FROM Node_General_Pool"
                          " WHERE PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 15"),
              Texts{*node.label + "|today"});
    EXPECT_FALSE(AutoNodeExists(dataBase_, {Demo, 25}) || ReadAutoNode(dataBase_, {Demo, 25}));
    EXPECT_FALSE(AutoNodeExists(dataBase_, {{2, 2}, 15}) || AutoNodeExists(dataBase_, {{1, 1}, 15}));
}

TEST_F(Nodes, AreReadAsFarAsTheyCanBe) {
    store_.Execute(
        "UPDATE Detail_AUTO_Prompts SET NodeNumber = 3000000000 WHERE PartID = 2 AND NodeMasterID = 1"
        " AND SequenceNo = 3; UPDATE Detail_AUTO_Action SET NodeTypeID = 3000000000"
        " WHERE PartID = 2 AND NodeMasterID = 1 AND SequenceNo = 5");
    AutoNode node;
    AutoNodeReader reader(dataBase_, {Demo, 1}, Labels::Read);
    ASSERT_TRUE(reader.ReadRecord(node));
    EXPECT_EQ(Raised([&] { reader.ReadPrompts(node); }), ErrorNumber::Overflow);
    EXPECT_EQ(Raised([&] { reader.ReadActions(node); }), ErrorNumber::Overflow);
    EXPECT_EQ(node.prompts.size(), 2U);
    EXPECT_EQ(node.prompts.back().target.label, "Welcome, main menu");
    EXPECT_EQ(node.actions.size(), 4U);
    EXPECT_EQ(node.label, "Main menu");
}

TEST(Settings, StandForWhatTheyMayHold) {
    const auto values = [](const Settings& settings) {
        std::string texts = TerminatingDigits.at(TerminatingDigitOf(settings));
        for (const SettingField& rule : SettingFields) {
            texts += ' ' + std::to_string(ValueOf(rule, settings));
        }
        return texts;
    };
    EXPECT_EQ(values({}), "No 1 0 1 1");
    EXPECT_EQ(values({7, "*/#", 5, 60, 15}), "*/# 7 5 60 15");
    EXPECT_EQ(values({8, "no", 6, 61, 16}), "No 1 0 1 1");
    EXPECT_EQ(values({70000, "##", 65536, 65537, -1}), "No 1 0 1 1");
}

TEST_F(Nodes, TellWhatDiffers) {
    const AutoNode before = Read(1);
    const auto expect = [&](const Texts& words, const std::function<void(AutoNode&)>& change) {
        AutoNode after = before;
        change(after);
        EXPECT_EQ(Differences(before, after), words);
        EXPECT_EQ(before == after, words.empty());
    };
    const Reference message{0, "MSG", 11, {}};
    expect({}, [](AutoNode& node) { node.prompts[0].target.label = "another"; });
    expect({"type AUTO → auto", "label \"Main menu\" → none", "retry limit 3 → none",
            R"(terminating digit "#" → "No")"},
           [](AutoNode& node) {
               node.type = "auto";
               node.label.reset();
               node.settings.retryLimit.reset();
               node.settings.terminatingDigit = "No";
           });
    expect({"prompt 1 removed: TIME 1", "prompt 3 added: MSG 11"}, [&](AutoNode& node) {
        node.prompts.erase(node.prompts.begin());
        node.prompts.push_back({3, message});
    });
    expect({"prompt 2 MSG 2 → MSG 11"}, [&](AutoNode& node) { node.prompts[1].target = message; });
    expect({"prompt 2 MSG 2 (type 0) → MSG 2 (type 5)"},
           [&](AutoNode& node) { node.prompts[1].target.typeID = 5; });
    expect({"key 1 AUTO 8 → MSG 11", "key 2 removed: AUTO 9", "keys 77-78 added: MSG 11"},
           [&](AutoNode& node) {
               node.actions[0].target = message;
               node.actions.erase(node.actions.begin() + 1);
               node.actions.push_back({9, message, "77", "78"});
           });
    expect({"the entries stand in another order"},
           [](AutoNode& node) { std::swap(node.actions[0], node.actions[1]); });
    AutoNode zero = before;
    zero.actions[0].low = zero.actions[0].high = "0";
    AutoNode none = zero;
    none.actions[0].low.reset();
    EXPECT_EQ(Differences(zero, none), Texts{R"(key 0, stored range "0" to "0" → none to "0")"});
    expect({"branch * AUTO 11 → MSG 11", "branch # NONE 0 (type 814) → NONE 1 (type 814)"},
           [&](AutoNode& node) {
               node.branches[3] = message;
               node.branches[4].number = 1;
           });
}

// A name that begins with the new one stands for it, whatever the case; references that are no nodes are
// left.
TEST(RequiredNodes, AreCollectedByTheBeginningOfTheirNames) {
    RequiredNodes required;
    const std::vector<std::pair<const char*, NodeKey>> references = {
        {"MSG 990", {0, 990}},  {"MSG 99", {0, 99}},     {"MSG 98", {0, 98}},   {"MSG 980", {0, 980}},
        {"msg 98", {0, 98}},    {"EMPTY", {999, 77}},    {"SPEAK 7", {816, 7}}, {"NONE 7", {814, 7}},
        {"M_ON 97", {817, 97}}, {"M_OFF 97", {818, 97}}, {"MSG 97", {0, 97}},   {"ÄNS 1", {30, 1}},
        {"äns 1", {31, 1}}};
    for (const auto& [display, node] : references) {
        required.Add(display, node);
    }
    Texts names;
    for (const auto& [name, node] : required.Nodes()) {
        names.push_back(name + '/' + node.Text(std::to_string(node.typeID)));
    }
    EXPECT_EQ(names, (Texts{"MSG 990/0 990", "MSG 98/0 98", "MSG 980/0 980", "MSG 97/0 97", "ÄNS 1/30 1"}));
}

TEST_F(Nodes, AreMadeFromTheirTemplateAndToldPartByPart) {
    store_.Execute("UPDATE Node_General_Pool SET NodeDescription = 'Register of ' || NodeType"
                   " WHERE PartID = 2 AND NodeNumber = 0");
    const std::map<int, const char*> types = {{0, "MSG"},  {1, "CMD"},   {2, "TIME"},   {3, "DATE"},
                                              {4, "XFER"}, {6, "DTMF"},  {7, "VOX"},    {8, "LIST"},
                                              {9, "AUTO"}, {12, "PAAS"}, {13, "TABLE"}, {15, "DBN"}};
    const auto count = [&](const std::string& table, int number) {
        const char* key = strncasecmp(table.c_str(), "Node_", 5) == 0 ? "NodeNumber" : "NodeMasterID";
        return store_.Value("SELECT COUNT(*) FROM " + table + " WHERE PartID = 2 AND " + key + " = " +
                            std::to_string(number));
    };
    for (const auto& [type, name] : types) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(IsNodeExisted(dataBase_, Demo, {type, 990}));
        EXPECT_EQ(CreateNodeFromTemplate(dataBase_, Demo, 0, {type, 990}, "today"), Creation::Created);
        EXPECT_TRUE(IsNodeExisted(dataBase_, Demo, {type, 990}));
        for (const std::string& table : store_.Tables()) {
            const std::string detail = std::string("Detail_") + name;
            if (strcasecmp(table.c_str(), (std::string("Node_") + name).c_str()) != 0 &&
                strncasecmp(table.c_str(), detail.c_str(), detail.size()) != 0) {
                continue;
            }
            EXPECT_NE(count(table, 0), "0") << table;
            EXPECT_EQ(count(table, 990), count(table, 0)) << table;
        }
    }
    EXPECT_EQ(store_.Value("SELECT COUNT(*) FROM Node_General_Pool WHERE NodeNumber = 990"
                           " AND NodeDescription = 'Register of ' || NodeType AND DateModified = 'today'"),
              "12");
    // References to messages stand for the message.
    EXPECT_EQ(CreateNodeFromTemplate(dataBase_, Demo, 0, {818, 62}, "today"), Creation::Created);
    EXPECT_TRUE(IsNodeExisted(dataBase_, Demo, {817, 62}));
    CreateNodeFromTemplate(dataBase_, Demo, 0, {817, 1000}, "today");
    EXPECT_EQ(
        store_.Rows("SELECT VexoFilename FROM Node_MSG WHERE PartID = 2 AND NodeNumber IN (62, 990, 1000)"
                    " ORDER BY NodeNumber"),
        (Texts{"P02M062.wav", "P02M990.wav", "P02M1000.wav"}));

    store_.Execute(
        "DELETE FROM Node_General_Pool WHERE NodeNumber = 0 AND NodeTypeID IN (2, 8);"
        "DELETE FROM Node_LIST WHERE NodeNumber = 0; DELETE FROM Detail_LIST WHERE NodeMasterID = 0;"
        "DELETE FROM Node_PAAS WHERE NodeNumber = 0");
    for (const auto& [type, outcome] : {std::pair{2, Creation::Unregistered},
                                        {8, Creation::NoTemplate},
                                        {12, Creation::Empty},
                                        {5, Creation::NoRule}}) {
        EXPECT_EQ(CreateNodeFromTemplate(dataBase_, Demo, 0, {type, 991}, "today"), outcome) << type;
        EXPECT_EQ(IsNodeExisted(dataBase_, Demo, {type, 991}), outcome == Creation::Empty) << type;
    }
    EXPECT_EQ(Raised([&] {
                  CreateNodeFromTemplate(dataBase_, Demo, 0, {2, 991}, "today");
              }),
              ErrorNumber::DuplicateKey);
}

// What a place offers, and what it leaves out for want of numbers.
struct Offers {
    explicit Offers(const std::string& sql) {
        store.Execute(sql);
        lists.ReadNames(dataBase, Demo);
    }

    std::string Types(Slot slot) {
        std::string types;
        lists.ReadOffered(dataBase, Demo, slot, [&](int, const std::string& name) { types += name + ' '; });
        for (const std::string& name : lists.*SetOf(slot).notAvailable) {
            types += '-' + name + ' ';
        }
        return types;
    }

    TestStore store;
    DataBase dataBase;
    TypeCatalogue lists;
};

TEST(TypeCatalogue, TakesLimitsFromTheStoreOrItsRules) {
    Offers offers(
        "DELETE FROM Node_Type_Max WHERE NodeType_ID = 5;"
        "UPDATE Node_Type_Max SET Max_Number = 99999999999 WHERE PartitionID = 2 AND NodeType_ID = 2;"
        "INSERT INTO Node_Type_Max VALUES (1, 2, 818, 7)");
    for (const auto& [type, limit] :
         {std::pair{0, 250}, {2, 32767}, {5, 0}, {9, 40}, {816, 999}, {817, 250}, {818, 7}}) {
        EXPECT_EQ(offers.lists.MaxNodeNumberCollection[type], limit) << type;
    }
    for (const auto& [type, last] : {std::pair{0, 250}, {818, 250}, {816, 999}, {5, 0}}) {
        EXPECT_EQ(ReadAssignableNumbers(offers.dataBase, Demo, type), last) << type;
    }
}

TEST(TypeCatalogue, OffersTypesWithNumbers) {
    // Limits of MSG and XFER, which types prompts and then actions offer and leave out. SPEAK has no limit.
    constexpr std::array<std::array<const char*, 3>, 5> cases = {{
        {"(1, 2, 0, 0), (1, 2, 4, -1)", "SPEAK -MSG -XFER ", "-MSG -XFER "},
        {"(1, 2, 4, 5)", "MSG XFER SPEAK ", "XFER "},
        {"(1, 2, 0, 1)", "MSG XFER SPEAK ", "MSG XFER SPEAK "},
        {"(1, 1, 0, 5), (2, 2, 4, 5)", "MSG XFER SPEAK ", ""}, // others' limits
        {"(1, 2, 0, 9); DELETE FROM SR_Node_Type_can_contain_Node_Type WHERE Set_ID = 6 AND "
         "Child_Node_Type_ID = 0",
         "MSG XFER SPEAK ", ""}, // messages that actions do not refer to
    }};
    for (const auto& [limits, prompts, actions] : cases) {
        Offers offers(
            "DELETE FROM SR_Node_Type_can_contain_Node_Type; DELETE FROM Node_Type_Max;"
            "INSERT INTO SR_Node_Type_can_contain_Node_Type VALUES (9, 7, 0), (9, 7, 4), (9, 7, 816), "
            "(9, 6, 0), (9, 6, 4), (9, 6, 816), (8, 6, 7); INSERT INTO Node_Type_Max VALUES " +
            std::string(limits));
        EXPECT_EQ(offers.Types(Slot::Prompts), prompts) << limits;
        EXPECT_EQ(offers.Types(Slot::Actions), actions) << limits;
    }
    // Types that have the numbers of the sets, first without and then with numbers of nodes.
    for (const std::string limit : {"0", "1"}) {
        Offers offers(
            "DELETE FROM SR_Node_Type_can_contain_Node_Type; INSERT INTO "
            "SR_Node_Type_can_contain_Node_Type SELECT 9, ID, ID FROM SR_Node_Type_Names;"
            "UPDATE SR_Node_Type_Names SET English_Name = ID; UPDATE Node_Type_Max SET Max_Number = " +
            limit);
        int slot = 0;
        for (const std::string set : {"7", "6", "1", "3", "5", "8", "9"}) {
            EXPECT_EQ(offers.Types(static_cast<Slot>(slot++)), (limit == "0" ? '-' + set : set) + ' ');
        }
    }
}

TEST_F(Nodes, BeyondSixteenBitsAreNoOthersNumber) {
    store_.Execute("UPDATE Node_AUTO SET NodeNumber = 65538 WHERE PartID = 2 AND NodeNumber = 40");
    std::vector<int> numbers;
    EXPECT_EQ(Raised([&] {
                  ReadAutoNodes(dataBase_, Demo,
                                [&](std::int16_t number, auto) { numbers.push_back(number); });
              }),
              ErrorNumber::Overflow);
    EXPECT_EQ(numbers.size(), 17U) << "all before it";
    EXPECT_EQ(numbers.back(), 20);
}

} // namespace
} // namespace KAL_AUTO_Node
