#include "audit/FixMissing.h"
#include "audit/PartitionCheck.h"
#include "audit/Repoint.h"
#include "history/History.h"
#include "nodes/AutoNodeReader.h"
#include "store/Batch.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <thread>

namespace KAL_AUTO_Node {
namespace {

// A store of a few types; partition 1 is sound.
constexpr const char* Sound =
    "INSERT INTO SR_Node_Type_Names VALUES (0,'MSG'), (4,'XFER'), (8,'LIST'), (9,'AUTO'), (13,'TABLE'), "
    "(814,'NONE'),"
    " (817,'M_ON'), (818,'M_OFF'), (999,'EMPTY');"
    "INSERT INTO SR_Node_Type_can_contain_Node_Type VALUES (9,7,0), (9,7,999), (9,6,0), (9,6,4), (9,6,9),"
    " (9,1,0), (9,1,9), (9,3,0), (9,3,9), (9,5,0), (9,5,9), (9,8,814), (9,8,9), (9,9,814);"
    "INSERT INTO Node_Type_Max SELECT 1, PartID, ID, 20 FROM SR_Node_Type_Names,"
    " (SELECT 1 AS PartID UNION SELECT 2) AS Parts WHERE ID < 814;"
    "INSERT INTO Node_MSG (ConfigID, PartID, NodeTypeID, NodeNumber) VALUES (1,1,0,0), (1,1,0,1), (1,2,0,0), "
    "(1,2,0,1);"
    "INSERT INTO Node_XFER (ConfigID, PartID, NodeTypeID, NodeNumber, HoldNodeType, HoldNodeNumber, "
    "MOHNodeType,"
    " MOHNodeNumber) VALUES (1,1,4,1,'MSG',1,'NONE',0);"
    "INSERT INTO Node_AUTO SELECT 1, PartID, 9, Number, 2, '#', 5, 3, 2, 'MSG', 1, 'MSG', 1, 'MSG', 1, "
    "'AUTO',"
    " 'Label', 0, 0, 0, 814, 814, 'NONE', 0, 'NONE', 0 FROM (SELECT 1 AS PartID UNION SELECT 2) AS Parts,"
    " (SELECT 0 AS Number UNION SELECT 1 UNION SELECT 2) AS Numbers;"
    "UPDATE Node_AUTO SET NodeDescription = 'Menu ' || NodeNumber WHERE NodeNumber > 0;"
    "INSERT INTO Detail_AUTO_Prompts SELECT 1, PartID, 1, 0, 1, NodeNumber, 'MSG' FROM Node_AUTO WHERE "
    "NodeNumber > 0;"
    "INSERT INTO Detail_AUTO_Action SELECT 1, PartID, 1, 9, 3 - NodeNumber, NodeNumber, '1', '1', 'AUTO'"
    " FROM Node_AUTO WHERE NodeNumber > 0;"
    "INSERT INTO Node_General_Pool SELECT 1, PartID, 0, NodeNumber, 'MSG', 'Message', '' FROM Node_MSG;"
    "INSERT INTO Node_General_Pool SELECT 1, PartID, 9, NodeNumber, 'AUTO', NodeDescription, '' FROM "
    "Node_AUTO;"
    "INSERT INTO Node_General_Pool VALUES (1, 1, 4, 1, 'XFER', 'Transfer', '');";

// What is done to the second partition, and what is found then.
struct Case {
    const char* sql;
    std::vector<std::string> found;
};

const std::vector<Case> Cases = {
    {"UPDATE Node_AUTO SET AbortNodeNumber = 7 WHERE NodeNumber = 1", {"missing-node AUTO 1 MSG 7"}},
    {"INSERT INTO Node_XFER (ConfigID, PartID, NodeTypeID, NodeNumber, Busy1NodeType, Busy1NodeNumber)"
     " VALUES (1,2,4,3,'M_ON',7); INSERT INTO Node_General_Pool VALUES (1,2,4,3,'XFER','','')",
     {"missing-node XFER 3 MSG 7"}},
    {"UPDATE Node_AUTO SET StarNodeTypeID = 0, StarNodeType = 'MSG', StarNodeNumber = 1 WHERE NodeNumber = 1",
     {"type-not-offered AUTO 1 MSG 1"}},
    {"UPDATE Detail_AUTO_Prompts SET NodeNumber = 21 WHERE NodeMasterID = 1",
     {"beyond-maximum AUTO 1 MSG 21", "missing-node AUTO 1 MSG 21"}},
    {"UPDATE Detail_AUTO_Prompts SET NodeType = 'OLD' WHERE NodeMasterID = 1",
     {"type-name AUTO 1 'OLD' for MSG"}},
    {"UPDATE Node_General_Pool SET NodeType = 'OLD' WHERE NodeTypeID = 0 AND NodeNumber = 1",
     {"type-name MSG 1 'OLD' for MSG"}},
    {"INSERT INTO Detail_AUTO_Action VALUES (1,2,7,0,1,1,'1','1','MSG')", {"duplicate-entry AUTO 1 1-1"}},
    {"INSERT INTO Detail_AUTO_Action VALUES (1,2,7,0,1,1,'0','2','MSG'), (1,2,8,0,1,1,'01','02','MSG'),"
     " (1,2,9,0,1,1,'4','4','MSG'), (1,2,10,0,1,1,'4','6','MSG')",
     {"shared-digits AUTO 1 1, also in 0-2", "shared-digits AUTO 1 4, also in 4-6"}},
    {"INSERT INTO Detail_AUTO_Action VALUES (1,2,7,0,1,1,'20','70','MSG'), (1,2,8,0,1,1,'30','40','MSG'),"
     " (1,2,9,0,1,1,'35','80','MSG')",
     {"shared-digits AUTO 1 30-40, also in 20-70", "shared-digits AUTO 1 35-70, also in 20-70"}},
    {"UPDATE Detail_AUTO_Action SET NodeNumber = NodeMasterID",
     {"unreferenced AUTO 1", "unreferenced AUTO 2"}},
    {"INSERT INTO Node_LIST VALUES (1,2,8,3,'','LIST',''); INSERT INTO Detail_LIST VALUES "
     "(1,2,1,0,1,3,'OLD');"
     "INSERT INTO Node_General_Pool VALUES (1,2,8,3,'LIST','','')",
     {"type-name LIST 3 'OLD' for MSG"}},
    {"UPDATE Node_AUTO SET TimeoutNodeTypeID = 9, TimeoutNodeType = 'AUTO', InvalidNodeTypeID = 9,"
     " InvalidNodeType = 'AUTO', AbortNodeTypeID = 9, AbortNodeType = 'AUTO';"
     "UPDATE Detail_AUTO_Action SET NodeNumber = 7 WHERE NodeMasterID = 2",
     {"missing-node AUTO 2 AUTO 7"}},
    {"INSERT INTO Detail_AUTO_Action VALUES (1,2,7,0,1,1,'9','8','MSG')", {"reversed-range AUTO 1 9-8"}},
    {"INSERT INTO Detail_AUTO_Action VALUES (1,2,7,0,1,1,'001','001','MSG')",
     {"range-too-long AUTO 1 001-001"}},
    {"INSERT INTO Detail_AUTO_Action VALUES (1,2,7,0,1,1,'1','10','MSG')", {"range-lengths AUTO 1 1-10"}},
    {"INSERT INTO Detail_AUTO_Action VALUES (1,2,7,0,1,1,'*','*','MSG')", {"range-not-digits AUTO 1 *-*"}},
    {"UPDATE Node_AUTO SET RetryLimit = 6, TerminatingDigit = 'no', NumberOfDigits = NULL WHERE NodeNumber = "
     "1",
     {"setting-outside AUTO 1 number of digits none", "setting-outside AUTO 1 retry limit 6"}},
    {"UPDATE Node_AUTO SET TerminatingDigit = '' WHERE NodeNumber = 1",
     {"setting-outside AUTO 1 terminating digit"}}, // no blank ends it
    {"UPDATE Detail_AUTO_Prompts SET NodeTypeID = 999, NodeType = 'EMPTY' WHERE NodeMasterID = 1",
     {"no-prompts AUTO 1"}},
    {"UPDATE Node_AUTO SET TimeoutNodeTypeID = 9, TimeoutNodeType = 'AUTO', InvalidNodeTypeID = 9,"
     " InvalidNodeType = 'AUTO', AbortNodeTypeID = 9, AbortNodeType = 'AUTO'",
     {"no-way-out AUTO 1", "no-way-out AUTO 2"}},
    {"UPDATE Detail_AUTO_Action SET NodeNumber = 1", {"unreferenced AUTO 2"}},
    {"INSERT INTO Detail_AUTO_Prompts VALUES (1,2,1,0,1,-3,'MSG'), (1,2,1,0,1,9,'MSG'), (1,2,2,0,1,9,'MSG');"
     "INSERT INTO Detail_AUTO_Action VALUES (1,2,1,0,1,9,'1','1','MSG');"
     "INSERT INTO Detail_LIST VALUES (1,2,1,0,1,5,'MSG'), (1,2,2,0,7,5,'MSG')",
     {"orphan-rows AUTO -3 1 prompts", "orphan-rows AUTO 9 1 actions", "orphan-rows AUTO 9 2 prompts",
      "orphan-rows LIST 5 2 of Detail_LIST"}},
    {"INSERT INTO Node_General_Pool VALUES (1,2,13,1,'TABLE','',''), (1,2,77,1,'other','','')",
     {"registered-without-node TABLE 1"}},
    {"DELETE FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 2",
     {"missing-node AUTO 1 AUTO 2", "not-registered AUTO 2"}},
    {"DELETE FROM Detail_AUTO_Action WHERE NodeMasterID = 1; DELETE FROM Detail_AUTO_Prompts WHERE "
     "NodeMasterID = 1;"
     "UPDATE Node_AUTO SET NodeDescription = 'Label' WHERE NodeNumber = 1",
     {"as-template AUTO 1", "no-prompts AUTO 1", "unreferenced AUTO 2"}},
};

std::vector<std::string> Found(DataBase& dataBase, std::int16_t partition) {
    History history(dataBase);
    std::vector<std::string> keys;
    for (const Finding& finding : CheckPartition(dataBase, history, {1, partition}).findings) {
        std::string key = finding.Key({1, partition});
        const std::string place = " 1 " + std::to_string(partition);
        keys.push_back(key.erase(key.find(place), place.size()));
    }
    std::ranges::sort(keys);
    return keys;
}

TEST(Check, FindsEveryFaultAndNothingInASoundPartition) {
    std::set<std::string> codes;
    const TestStore store(StoreContent::Empty);
    std::string anew;
    for (const std::string& table : store.Tables()) {
        anew += "DELETE FROM " + table + ';';
    }
    anew += Sound;
    store.Execute(anew);
    DataBase dataBase;
    EXPECT_EQ(Found(dataBase, 1), std::vector<std::string>());
    EXPECT_EQ(Found(dataBase, 2), std::vector<std::string>());
    for (const auto& [sql, found] : Cases) {
        SCOPED_TRACE(sql);
        store.Execute(anew + sql);
        EXPECT_EQ(Found(dataBase, 2), found);
        for (const std::string& key : found) {
            codes.insert(key.substr(0, key.find(' ')));
        }
    }
    EXPECT_EQ(codes.size() + 1 + 4, FaultRules.size()) << "all but the one below, and those of recordings";
}

TEST(Check, FindsASaveThatDidNotFinishAndLeavesItThere) {
    const TestStore store(StoreContent::Empty);
    store.Execute(Sound);
    DataBase dataBase;
    History history(dataBase);
    Batch mark(dataBase);
    static_cast<void>(
        history.Add(mark, {{1, 2}, 1}, "save", VersionState::Failed, ReadContent(dataBase, {{1, 2}, 1})));
    mark.Run();
    store.Execute("UPDATE Node_AUTO SET NodeDescription = 'half' WHERE NodeNumber = 1");
    if (TestStore::OnServer()) {
        EXPECT_EQ(Found(dataBase, 2), std::vector<std::string>()) << "a save is whole there or not at all";
        return;
    }
    ASSERT_EQ(Found(dataBase, 2).size(), 1U);
    EXPECT_TRUE(Found(dataBase, 2).front().starts_with("unfinished-save AUTO 1 begun "));
    store.Execute("UPDATE Node_AUTO SET NodeDescription = 'Menu 1' WHERE NodeNumber = 1");
    EXPECT_EQ(Found(dataBase, 2), std::vector<std::string>()) << "it has left the node as it was";
    EXPECT_EQ(store.Value("SELECT State FROM Node_AUTO_Version"), "failed");
}

TEST(Check, IsDescribedInItsPage) {
    const std::string text = BytesOf(CHECK_PAGE);
    for (const auto& [code, severity, meaning, advice] : FaultRules) {
        const std::string row =
            std::string("| `") + code + "` | " + NameOf(severity) + " | " + meaning + " | " + advice;
        EXPECT_NE(text.find(row + " |\n"), std::string::npos) << row;
    }
}

TEST(StoreFile, HasNoReferenceThatIsNotKnown) {
    const TestStore store;
    // Numbers without a type: how a transfer is made, and which directory is searched.
    std::set<std::string> others = {"Node_XFER.Style", "Node_DBN.Directory"};
    // A node's own number.
    for (const std::string& table :
         store.Rows("SELECT name FROM sqlite_master WHERE name LIKE 'Node~_%' ESCAPE '~'")) {
        others.insert(table + '.');
    }
    std::set<std::string> listed;
    for (const ReferenceColumn& column : AllReferenceColumns()) {
        const std::string name = std::string(column.table) + '.' + std::string(column.word);
        EXPECT_TRUE(listed.insert(name).second) << name;
        EXPECT_EQ(store.Value("SELECT COUNT(*) FROM pragma_table_info('" + std::string(column.table) +
                              "') WHERE name = '" + std::string(column.word) + "NodeTypeID'"),
                  column.hasTypeID ? "1" : "0")
            << name;
    }
    for (const std::string& name :
         store.Rows("SELECT t.name || '.' || SUBSTR(c.name, 1, LENGTH(c.name) - 10) FROM sqlite_master AS t,"
                    " pragma_table_info(t.name) AS c WHERE t.type = 'table' AND c.name LIKE '%NodeNumber'")) {
        EXPECT_EQ(listed.erase(name) + others.count(name), 1U) << name;
    }
    EXPECT_EQ(listed, std::set<std::string>());
}

// All rows of the templates refer to a message that there is not.
void ReferEverywhere(const TestStore& store, int message) {
    for (const ReferenceColumn& column : AllReferenceColumns()) {
        const std::string word(column.word);
        store.Execute("UPDATE " + std::string(column.table) + " SET " + word + "NodeType = 'MSG', " + word +
                      "NodeNumber = " + std::to_string(message) +
                      (column.hasTypeID ? ", " + word + "NodeTypeID = 0" : "") + " WHERE PartID = 2 AND " +
                      (column.table.starts_with("Node_") ? "NodeNumber" : "NodeMasterID") + " = 0");
    }
}

TEST(References, AreRepointedAllOrNone) {
    const TestStore store;
    ReferEverywhere(store, 249);
    store.Execute(
        "UPDATE Detail_AUTO_Prompts SET NodeTypeID = 817, NodeType = 'M_ON' WHERE NodeNumber = 249");
    DataBase dataBase;
    History history(dataBase);
    const TypeNames names(dataBase);
    const Partition partition{1, 2};
    const auto uses = [&](int number) {
        return ReadUses(dataBase, partition, names, NodeKey{0, number}).size();
    };
    const auto repoint = [&](NodeKey to, NodeKey from = {0, 249}) {
        const std::array map{Replacement{from, to}};
        return Repoint(dataBase, history, names, partition, map, "today").obstacles;
    };
    const std::size_t all = AllReferenceColumns().size();
    EXPECT_EQ(uses(249), all);

    EXPECT_EQ(repoint({0, 248}), std::vector<std::string>{"MSG 248 does not exist"});
    EXPECT_EQ(repoint({0, 249}).size(), 2U) << "its own place, and it does not exist";
    store.Execute("UPDATE Node_Type_Max SET Max_Number = 59 WHERE NodeType_ID = 0 AND PartitionID = 2");
    EXPECT_NE(repoint({0, 60}).at(0).find("MSG 60 is above the partition's highest"), std::string::npos);
    store.Execute("UPDATE Node_Type_Max SET Max_Number = 250 WHERE NodeType_ID = 0 AND PartitionID = 2");
    EXPECT_EQ(repoint({9, 1}).size(), 1U) << "the AUTO node's prompt, which takes a message";
    EXPECT_EQ(repoint({817, 1}).size(), 1 + 6U) << "no node, and offered by its action alone";
    store.Execute(
        "INSERT INTO SR_Node_Type_can_contain_Node_Type VALUES (6,1,0), (6,2,1), (7,1,0), (7,2,9), (7,3,0)");
    EXPECT_EQ(repoint({9, 1}).size(), 1 + 5U) << "what DTMF nodes contain is known, and no AUTO node";
    EXPECT_EQ(repoint({0, 60}, {999, 1}), std::vector<std::string>{"EMPTY 1 is no node"});
    store.Refuse("UPDATE ON Node_XFER");
    EXPECT_THROW(repoint({0, 60}), RuntimeError);
    store.Skip("UPDATE ON Node_XFER");
    EXPECT_THROW(repoint({0, 60}), RuntimeError);
    EXPECT_EQ(uses(249), all);
    EXPECT_EQ(history.Versions({partition, 0}).size(), 0U);

    store.Allow();
    const std::size_t before = uses(60);
    // Another program adds one until it may be written.
    std::optional<SQLite::Database> other;
    std::jthread commits;
    if (!TestStore::OnServer()) {
        other.emplace(store.File().string(), SQLite::OPEN_READWRITE)
            .exec("BEGIN IMMEDIATE; INSERT INTO Detail_AUTO_Prompts VALUES (1, 2, 99, 0, 249, 2, 'MSG')");
        commits = std::jthread([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            other->exec("COMMIT");
        });
    }
    EXPECT_EQ(repoint({0, 60}), std::vector<std::string>());
    EXPECT_EQ(uses(249), 0U);
    EXPECT_EQ(uses(60), before + all + (other ? 1 : 0));
    EXPECT_EQ(store.Value("SELECT NodeTypeID || NodeType FROM Detail_AUTO_Prompts WHERE NodeNumber = 60"
                          " ORDER BY NodeTypeID DESC"),
              "817M_ON");
    EXPECT_EQ(store.Value("SELECT COUNT(*) FROM Node_General_Pool WHERE DateModified = 'today'"),
              other ? "11" : "10");
    history.PutBack({partition, 0}, 1, "restore");
    EXPECT_EQ(uses(249), 7U) << "those of the AUTO node";
}

} // namespace
} // namespace KAL_AUTO_Node
