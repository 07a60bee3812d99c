#include "exchange/Export.h"
#include "history/History.h"
#include "nodes/NodeTypes.h"
#include "platform/RuntimeError.h"
#include "testing/TestStore.h"
#include "upkeep/NodeRows.h"
#include "upkeep/RemoveNode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <random>
#include <sstream>

namespace KAL_AUTO_Node {
namespace {

using Texts = std::vector<std::string>;

constexpr Partition Company{1, 2};

class Upkeep : public testing::Test {
  protected:
    Upkeep() { store_.Execute("UPDATE Node_General_Pool SET DateModified = 'today'"); }

    [[nodiscard]] std::string Exported() {
        const auto file = store_.Folder() / "all.json";
        Export(dataBase_, std::nullopt, file, [](std::uint64_t) {});
        std::ifstream text(file);
        return {std::istreambuf_iterator<char>(text), {}};
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
    const auto obstacle = [&](const NodeKey& node, int number, Partition to = Company) {
        const auto obstacles = Copy({Company, node, to, number, std::nullopt}).obstacles;
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
    const std::string before = Exported();
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
        }
        if (removes) {
            EXPECT_THROW(Remove({9, 5}, NodeKey{9, 1}), RuntimeError) << write;
        }
        store_.Allow();
        EXPECT_TRUE(Exported() == before) << write;
    }
}

// $KAL_TEST_ROUNDS of them.
TEST_F(Upkeep, IsAsBeforeAfterAMapAndItsInverse) {
    std::istringstream text("\n# swaps\nMSG 6 -> MSG 5\r\n  msg 5 -> MSG 6");
    auto map = ReplacementsOf(text, names_);
    const std::string before = Exported();
    const char* const given = std::getenv("KAL_TEST_ROUNDS");
    std::mt19937 random(given != nullptr ? 1 : 2);
    for (int rounds = given != nullptr ? std::atoi(given) : 8; rounds > 0; --rounds) {
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
        try {
            static_cast<void>(ReplacementsOf(wrong, names_));
            ADD_FAILURE() << line;
        } catch (const RuntimeError& error) {
            EXPECT_NE(std::string(error.what()).find(told), std::string::npos) << error.what();
        }
    }
}

} // namespace
} // namespace KAL_AUTO_Node
