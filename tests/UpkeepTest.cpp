#include "audit/Recordings.h"
#include "exchange/Export.h"
#include "history/History.h"
#include "nodes/FindNodes.h"
#include "platform/RuntimeError.h"
#include "testing/TestStore.h"
#include "upkeep/NodeRows.h"
#include "upkeep/RemoveNode.h"
#include "upkeep/RepointRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <sstream>

namespace KAL_AUTO_Node {
namespace {

constexpr Partition Company{1, 2};

class Upkeep : public testing::Test {
  protected:
    Upkeep() { store_.Execute("UPDATE Node_General_Pool SET DateModified = 'today'"); }

    [[nodiscard]] std::string Exported() {
        const auto file = store_.Folder() / "all.json";
        Export(dataBase_, std::nullopt, file, [](std::uint64_t) {});
        return BytesOf(file);
    }

    CopyReport Copy(const CopyOrder& order) {
        return CopyNode(dataBase_, history_, names_, order, "today", Carry::Out);
    }

    Texts Remove(const NodeKey& node, std::optional<NodeKey> instead = {}, bool forget = false) {
        return RemoveNode(dataBase_, history_, names_, {Company, node, instead, forget}, "today", Carry::Out)
            .obstacles;
    }

    Texts Move(const NodeKey& node, int number) {
        return MoveNode(dataBase_, history_, names_, Company, node, number, "today", Carry::Out).obstacles;
    }

    // A plan's text.
    std::string Planned(const std::array<Replacement, 2>& map, const std::string& date = "today") {
        const auto repoint = PlanRepoint(dataBase_, history_, names_, Company, map);
        return TextOf(RowsOf(dataBase_, Company, repoint, map, date));
    }

    // The rows of a node, but for its number and the file that it plays.
    Texts Rows(Partition partition, const NodeKey& node) {
        Texts rows;
        for (const NodeTable& table : TablesOf(node.typeID)) {
            for (StoreRow& row : ReadRows(dataBase_, table, partition, node)) {
                row[table.number].reset();
                std::string text = table.table->name;
                for (std::size_t i = 0; i < row.size(); ++i) {
                    text += '|' + (table.table->columns[i].name == "VexoFilename" || i == 1
                                       ? std::string()
                                       : row[i].value_or("Null"));
                }
                rows.push_back(text);
            }
        }
        return rows;
    }

    TestStore store_;
    DataBase dataBase_;
    History history_{dataBase_};
    TypeNames names_{dataBase_};
};

TEST_F(Upkeep, CopiesNodesOfEveryType) {
    store_.Execute("UPDATE Node_Type_Max SET Max_Number = 300 WHERE NodeType_ID < 814");
    // Open connections to a server take tables that they have met for there.
    store_.Execute(TestStore::OnServer() ? "" : "DROP TABLE Node_AUTO_Version; DROP TABLE Node_Creation");
    for (const int typeID : {0, 1, 2, 3, 4, 6, 7, 8, 9, 12, 13, 15}) {
        SCOPED_TRACE(typeID);
        const NodeKey node{typeID, typeID == 13 ? 0 : 1};
        const Texts rows = Rows(Company, node);
        EXPECT_EQ(Copy({Company, node, Company, 299, std::nullopt}).obstacles, Texts());
        EXPECT_EQ(Rows(Company, {typeID, 299}), rows);
        const auto kept = Copy({Company, node, {1, 1}, 298, std::nullopt, Missing::Keep});
        EXPECT_EQ(kept.obstacles, Texts());
        EXPECT_EQ(Rows({1, 1}, {typeID, 298}), rows);
        EXPECT_EQ(Copy({Company, node, {1, 1}, 297, "New", Missing::Refuse}).obstacles.size(),
                  kept.missing.size());
        const auto found = Rows({1, 1}, {typeID, 297});
        EXPECT_EQ(found.empty(), !kept.missing.empty());
    }
    EXPECT_TRUE(history_.Newest({Company, 299})) << "a history is made where there is none";
    const auto obstacle = [&](const NodeKey& node, int number) {
        const auto obstacles = Copy({Company, node, Company, number, std::nullopt}).obstacles;
        return obstacles.empty() ? std::string() : obstacles.front();
    };
    EXPECT_EQ(obstacle({9, 1}, 2), "AUTO 2 exists already");
    EXPECT_EQ(obstacle({9, 1}, 0), "AUTO 0 is the partition's template");
    EXPECT_EQ(obstacle({9, 1}, 301), "AUTO 301 is above the partition's highest number of the type, 300");
    EXPECT_EQ(obstacle({9, 77}, 78), "AUTO 77 does not exist");
    EXPECT_NE(obstacle({5, 1}, 2).find("HOLD 1 is of a type"), std::string::npos);
    store_.Execute("INSERT INTO Detail_AUTO_Prompts VALUES (1,2,1,0,1,90,'MSG')");
    EXPECT_EQ(obstacle({9, 1}, 90), "AUTO 90 has detail rows already, though there is no such node");
    store_.Execute("DELETE FROM Node_General_Pool WHERE NodeTypeID = 2 AND NodeNumber = 1");
    EXPECT_EQ(obstacle({2, 1}, 91), "TIME 1 is not whole; check tells what it lacks");

    // What the other partition lacks is made, or nothing is copied where it cannot be.
    const auto made = Copy({Company, {9, 8}, {1, 1}, 8, "Sales there", Missing::Create});
    EXPECT_NE(made.obstacles.size(), 0U) << "it has templates of few types";
    EXPECT_EQ(Rows({1, 1}, {9, 8}), Texts());
    EXPECT_EQ(Copy({Company, {8, 1}, {1, 1}, 9, "List", Missing::Create}).obstacles, Texts());
    EXPECT_EQ(
        store_.Value("SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 1 AND NodeTypeID = 8 "
                     "AND NodeNumber = 9"),
        "List");
}

TEST_F(Upkeep, BringsBackWhatIsRemovedAndTakesAwayWhatIsNew) {
    const std::string before = Exported();
    EXPECT_EQ(Remove({9, 0}), Texts{"AUTO 0 is the partition's template"});
    EXPECT_EQ(Remove({0, 50}), Texts{"no history keeps MSG 50; with --forget it is removed for good"});
    const Texts uses = Remove({9, 5});
    ASSERT_FALSE(uses.empty());
    EXPECT_TRUE(uses.front().ends_with(" refers to AUTO 5")) << uses.front();
    EXPECT_TRUE(Exported() == before);
    int removed = 0;
    for (const std::string& number : store_.Rows(
             "SELECT NodeNumber FROM Node_AUTO WHERE PartID = 2 AND NodeNumber > 0 ORDER BY NodeNumber")) {
        const int node = std::stoi(number);
        if (Remove({9, node}).empty()) {
            ++removed;
            EXPECT_FALSE(Exported() == before);
            const NodePlace place{Company, static_cast<std::int16_t>(node)};
            history_.PutBack(place, history_.Newest(place)->number, "restore");
            EXPECT_TRUE(Exported() == before) << node;
        }
    }
    EXPECT_GT(removed, 0);
    EXPECT_EQ(Remove({9, 5}, NodeKey{9, 1}), Texts());
    EXPECT_EQ(ReadUses(dataBase_, Company, names_, NodeKey{9, 5}).size(), 0U);
    EXPECT_EQ(Remove({0, 50}, NodeKey{0, 51}, true), Texts());
    EXPECT_FALSE(ReadTraces(dataBase_, Company, {0, 50}).Any());

    const std::string now = Exported();
    EXPECT_EQ(Copy({Company, {9, 1}, Company, 30, "Next"}).obstacles, Texts());
    history_.PutBack({Company, 30}, 1, "restore");
    EXPECT_TRUE(Exported() == now);
    // One that the register lacks comes back so.
    store_.Execute("DELETE FROM Node_General_Pool WHERE NodeTypeID = 9 AND PartID = 2 AND NodeNumber = 14");
    const std::string without = Exported();
    EXPECT_EQ(Remove({9, 14}, NodeKey{9, 1}), Texts());
    history_.PutBack({Company, 14}, history_.Newest({Company, 14})->number, "restore");
    EXPECT_FALSE(ReadTraces(dataBase_, Company, {9, 14}).registered);
}

TEST_F(Upkeep, MovesNodesAndAllThatRefersToThem) {
    store_.Execute("UPDATE Node_Type_Max SET Max_Number = 250 WHERE PartitionID = 2");
    const std::string before = Exported();
    for (const NodeKey& node : {NodeKey{0, 6}, {0, 44}, {2, 1}, {4, 1}, {8, 1}, {9, 1}, {9, 5}, {15, 1}}) {
        constexpr int free = 249;
        EXPECT_EQ(Move(node, free), Texts()) << node.typeID;
        EXPECT_FALSE(ReadTraces(dataBase_, Company, node).Any());
        EXPECT_EQ(ReadUses(dataBase_, Company, names_, node).size(), 0U);
        EXPECT_EQ(Move({node.typeID, free}, node.number), Texts());
        EXPECT_TRUE(Exported() == before) << node.typeID;
    }
    EXPECT_EQ(Move({9, 1}, 2), Texts{"AUTO 2 exists already"});
    EXPECT_EQ(Move({9, 0}, 30).size(), 1U);
}

// Each is whole or not at all.
TEST_F(Upkeep, ChangesNothingWhereAWriteFails) {
    const auto state = [&] { return Exported() + store_.Value("SELECT COUNT(*) FROM Node_AUTO_Version"); };
    const std::string before = state();
    const RowPlan plan =
        PlanIn(Planned({Replacement{{0, 6}, {0, 5}}, Replacement{{0, 12}, {0, 5}}}, "tomorrow"));
    for (const char* write :
         {"INSERT ON Node_AUTO", "INSERT ON Detail_AUTO_Action", "INSERT ON Node_General_Pool",
          "INSERT ON Node_AUTO_Version", "UPDATE ON Node_AUTO", "UPDATE ON Detail_AUTO_Prompts",
          "UPDATE ON Node_General_Pool", "DELETE ON Node_AUTO", "DELETE ON Detail_AUTO_Action",
          "DELETE ON Node_General_Pool"}) {
        history_.Require();
        store_.Refuse(write);
        const std::string kind(write);
        const bool moves = kind.starts_with("UPDATE") || kind.ends_with("Version");
        const bool removes = kind.starts_with("DELETE") || kind.ends_with("Version");
        if (!moves && !removes) {
            EXPECT_THROW(Copy({Company, {9, 1}, Company, 30, "Next"}), RuntimeError) << write;
        }
        if (moves) {
            EXPECT_THROW(Move({9, 1}, 30), RuntimeError) << write;
            EXPECT_THROW(Apply(dataBase_, history_, plan), RuntimeError) << write;
        }
        if (removes) {
            EXPECT_THROW(Remove({9, 5}, NodeKey{9, 1}), RuntimeError) << write;
        }
        store_.Allow();
        EXPECT_TRUE(state() == before) << write;
    }
}

TEST_F(Upkeep, TellsOfAllChangesWhyTheyWereMade) {
    History noted(dataBase_, "Anna: évening menu");
    CopyNode(dataBase_, noted, names_, {Company, {9, 1}, Company, 30, "Next"}, "today", Carry::Out);
    EXPECT_EQ(Copy({Company, {9, 1}, {1, 1}, 5, std::nullopt, Missing::Keep}).obstacles, Texts());
    EXPECT_EQ(Remove({9, 30}), Texts());
    store_.Execute(
        "UPDATE Node_AUTO_Version SET BegunAt = '2026-03-0' || (VersionNo + PartID) || 'T12:00:00.000Z'");
    const auto log = [&](const LogScope& scope) {
        Texts lines;
        history_.ReadLog(scope, [&](const NodePlace& place, const Version& version) {
            lines.push_back(std::to_string(place.partition.number) + ' ' + std::to_string(place.number) +
                            ' ' + version.work + (version.note.empty() ? "" : "|" + version.note));
        });
        return lines;
    };
    EXPECT_EQ(log({}), (Texts{"2 30 remove", "2 30 copy|Anna: évening menu", "1 5 copy"}));
    EXPECT_EQ(log({Partition{1, 1}, "", ""}), Texts{"1 5 copy"});
    EXPECT_EQ(log({{}, "2026-03-03", "2026-03-04"}), Texts{"2 30 copy|Anna: évening menu"});
    EXPECT_EQ(history_.Verify(), 3U);
    store_.Execute("UPDATE Node_AUTO_Version SET Content = '{\"node\": 7}' WHERE PartID = 1");
    const std::string unreadable = FailureOf([&] { history_.Verify(); });
    EXPECT_TRUE(unreadable.starts_with("AUTO node 5 of configuration 1, partition 1, version 1 cannot"))
        << unreadable;
    EXPECT_LT(StampOf("2026-03-01").value(), StampOf("2026-03-01 00:01").value());
    EXPECT_EQ(StampOf("2026-02-28", 1), StampOf("2026-03-01"));
    for (const char* wrong : {"", "yesterday", "2026-02-30", "2026-03-01 25:00", "2026-03-01 12"}) {
        EXPECT_FALSE(StampOf(wrong)) << wrong;
    }
}

TEST_F(Upkeep, FindsNodesByWordsAndNumbers) {
    const auto find = [&](const std::string& text) {
        Texts found;
        for (const auto& [node, label, uses] : FindNodes(dataBase_, Company, names_, text)) {
            found.push_back(node.Text(names_.Name(node.typeID)) + ' ' + label + ' ' + std::to_string(uses));
        }
        return found;
    };
    EXPECT_EQ(find("MÜLLER voice"),
              (Texts{"MSG 41 Voice of Müller, menu 1", "MSG 42 Voice of Müller, episode 1 2",
                     "MSG 43 Voice of Müller, episode 2 2", "MSG 44 Voice of Müller, trailer 4",
                     "LIST 2 Voice of Müller, archive 2", "AUTO 12 Voice of Müller 1"}));
    EXPECT_EQ(find("msg 44").size(), 1U);
    EXPECT_EQ(find("44").size(), 2U);
    EXPECT_EQ(find("nobody has this"), Texts());
}

TEST_F(Upkeep, LooksForRecordings) {
    const auto folder = store_.Folder() / "sounds";
    std::filesystem::create_directory(folder);
    for (const char* name : {"P02M001.wav", "p02m002.WAV", "P02M004.wav", "P01M001.wav", "Old.wav"}) {
        std::ofstream(folder / name) << '.';
    }
    std::filesystem::create_symlink(folder / "P02M001.wav", folder / "P02M003.wav");
    store_.Execute("UPDATE Node_MSG SET VexoFilename = '../secret.wav' WHERE PartID = 2 AND NodeNumber = 5;"
                   "UPDATE Node_MSG SET VexoFilename = NULL WHERE PartID = 2 AND NodeNumber = 6;"
                   "UPDATE Node_MSG SET VexoFilename = 'p02m004.wav' WHERE PartID = 1 AND NodeNumber = 2");
    const auto found = ReadRecordings(dataBase_, names_, Company, folder);
    Texts told;
    for (const Recording& one : found.messages) {
        if (one.message <= 7) {
            told.push_back(std::string(NameOf(*one.sound)) + one.other +
                           (one.shared.empty() ? "" : one.shared.front()));
        }
    }
    EXPECT_EQ(told,
              (Texts{"there", "other-casep02m002.WAV", "no-file",
                     "thereMSG 2 of configuration 1, partition 1", "leads-away", "no-name", "missing"}));
    EXPECT_EQ(found.unnamed, Texts{"Old.wav"});
    const auto findings = FindingsOf(found, names_);
    EXPECT_EQ(std::ranges::count(findings, Fault::RecordingName, &Finding::fault), 3);
    EXPECT_EQ(found.messages.at(5).label, "Invalid choice, try again");
    EXPECT_EQ(found.messages.at(5).players.size(), 8U);
    EXPECT_THROW(static_cast<void>(ReadRecordings(dataBase_, names_, Company, folder / "none")),
                 RuntimeError);
}

// Somebody else changes something between plan and application.
TEST_F(Upkeep, AppliesAPlanWhereWhatItTouchesIsAsItWas) {
    std::mt19937 random(3);
    int refused = 0;
    const int rounds = Rounds(6);
    const auto numbers = store_.Rows("SELECT NodeNumber FROM Node_AUTO WHERE PartID = 2 ORDER BY NodeNumber");
    RowPlan plan;
    for (int round = 0; round < rounds; ++round) {
        const int message = 1 + static_cast<int>(random() % 40);
        const std::array map{Replacement{{0, message}, {0, 45}}, Replacement{{0, 45}, {0, message}}};
        const std::string before = Exported();
        plan = PlanIn(Planned(map));
        Repoint(dataBase_, history_, names_, Company, map, "today");
        const std::string after = Exported();
        Repoint(dataBase_, history_, names_, Company, map, "today");
        ASSERT_TRUE(Exported() == before);

        const std::string number = numbers[random() % numbers.size()];
        const std::string row = random() % 2 == 0
                                    ? "Node_AUTO SET RetryLimit = RetryLimit #"
                                    : "Node_General_Pool SET NodeDescription = NodeDescription #";
        const auto disturb = [&](const std::string& how) {
            std::string sql =
                "UPDATE " + row + " WHERE PartID = 2 AND NodeTypeID = 9 AND NodeNumber = " + number;
            store_.Execute(sql.replace(sql.find('#'), 1, how));
        };
        const bool isLabel = row.starts_with("Node_G");
        disturb(isLabel ? "|| '!'" : "+ 1");
        const bool touched = plan.nodes.contains({Company, static_cast<std::int16_t>(std::stoi(number))});
        EXPECT_EQ(Apply(dataBase_, history_, plan, Applying::Tried).empty(), !touched);
        const std::string disturbed = Exported();
        const auto changed = Apply(dataBase_, history_, plan);
        EXPECT_EQ(changed.empty(), !touched) << round;
        EXPECT_TRUE(!touched || changed.front().starts_with("AUTO node " + number + " of "));
        EXPECT_EQ(Exported() == disturbed, touched || plan.changes.empty()) << round;
        refused += touched ? 1 : 0;
        store_.Execute("UPDATE Node_General_Pool SET NodeDescription = REPLACE(NodeDescription, '!', '')");
        disturb(isLabel ? "|| ''" : "- 1");
        EXPECT_TRUE(Exported() == (touched ? before : after)) << round;
    }
    EXPECT_TRUE(refused > 0 && refused < rounds) << refused;

    // A row of another type is told by its key.
    const std::string other = " WHERE PartID = 2 AND NodeMasterID = 5";
    store_.Execute("UPDATE Detail_CMD SET NodeNumber = 1" + other);
    const std::string text = Planned({Replacement{{0, 1}, {0, 2}}, Replacement{{0, 77}, {0, 2}}});
    store_.Execute("UPDATE Detail_CMD SET NodeNumber = 3" + other);
    EXPECT_EQ(Apply(dataBase_, history_, PlanIn(text)),
              Texts{"Detail_CMD, ConfigID 1, PartID 2, NodeMasterID 5, SequenceNo 1"});
    const auto uses = [&](const NodeKey& node) { return ReadUses(dataBase_, Company, names_, node).size(); };
    const std::size_t both = uses({0, 55}) + uses({2, 1});
    EXPECT_EQ(Apply(dataBase_, history_,
                    PlanIn(Planned({Replacement{{0, 55}, {2, 1}}, Replacement{{0, 77}, {2, 1}}}))),
              Texts());
    EXPECT_EQ(uses({2, 1}), both) << "of another type";
    std::string edited = text;
    edited.replace(edited.find("\"NodeNumber\": 2"), 15, "\"NodeNumber\": 3");
    std::string later = text;
    later.replace(later.find("\"version\": 1"), 12, "\"version\": 2");
    for (const auto& [wrong, told] : {std::pair(edited, "its sum is another"),
                                      {later, "of version 2"},
                                      {std::string("{}"), "it is no plan"},
                                      {text.substr(0, 200), "it is no plan"}}) {
        EXPECT_NE(FailureOf([&, text = wrong] { static_cast<void>(PlanIn(text)); }).find(told),
                  std::string::npos)
            << told;
    }
}

TEST_F(Upkeep, IsAsBeforeAfterAMapAndItsInverse) {
    std::istringstream text("\n# swaps\nMSG 6 -> MSG 5\r\n  msg 5 -> MSG 6");
    auto map = ReplacementsOf(text, names_);
    const std::string before = Exported();
    std::mt19937 random(2);
    for (int rounds = Rounds(5); rounds > 0; --rounds) {
        for (const bool inverse : {false, true}) {
            const auto plan = Repoint(dataBase_, history_, names_, Company, map, "today");
            ASSERT_EQ(plan.obstacles, Texts());
            ASSERT_EQ(Exported() == before, inverse || plan.changes.empty());
            for (auto& [from, to] : map) {
                std::swap(from, to);
            }
        }
        // Of some types some nodes, each in the place of another.
        map.clear();
        for (const int typeID : {0, 2, 4, 9}) {
            std::vector<int> nodes;
            for (const std::string& number :
                 store_.Rows("SELECT NodeNumber FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = " +
                             std::to_string(typeID))) {
                if (random() % 3 != 0) {
                    nodes.push_back(std::stoi(number));
                }
            }
            auto places = nodes;
            std::ranges::shuffle(places, random);
            for (std::size_t i = 0; i < nodes.size(); ++i) {
                if (nodes[i] != places[i]) {
                    map.push_back({{typeID, nodes[i]}, {typeID, places[i]}});
                }
            }
        }
    }
    for (const auto& [line, told] :
         {std::pair("MSG 1", "line 1: 'MSG 1' is not of the form"),
          std::pair("MSG 1 -> MSG x", "line 1: 'MSG x' is no node's type"),
          std::pair("MSG 1 -> MGS 2", "no node type 'MGS'"),
          std::pair("MSG 1 -> MSG 2\nM_ON 1 -> MSG 3", "line 2: M_ON 1 has a target in line 1")}) {
        std::istringstream wrong(line);
        EXPECT_NE(FailureOf([&] { static_cast<void>(ReplacementsOf(wrong, names_)); }).find(told),
                  std::string::npos)
            << line;
    }
}

} // namespace
} // namespace KAL_AUTO_Node
