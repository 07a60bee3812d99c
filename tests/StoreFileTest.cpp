#include "Performing.h"
#include "store/StoreFormat.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace KAL_AUTO_Node {
namespace {

using enum Command;
using enum ErrorNumber;

// Every command finds its rows in the key of its table, in the order asked for, however large the store
// grows.
TEST(StoreFile, SearchTheKeysAndSortNothing) {
    const TestStore store(StoreContent::Empty);
    for (std::size_t i = 0; i < CommandCount; ++i) {
        const auto command = static_cast<Command>(i);
        std::string steps;
        for (const std::string& row : store.Rows("EXPLAIN QUERY PLAN " + CommandText(command))) {
            steps += row.substr(row.rfind('|') + 1) + '\n';
        }
        SCOPED_TRACE(std::string(CommandName(command)) + ":\n" + steps);
        // The names are read all, as is what counts, lists nodes or tells of the whole store; the rows of an
        // insert come from the caller. A log is in the order of time.
        constexpr std::array all = {Get_Node_Names,
                                    Get_AUTO_Nodes_With_Versions,
                                    Get_Partitions_With_Rows,
                                    Get_Partitions,
                                    Get_Contents,
                                    Get_Log};
        constexpr std::array sorted = {Get_Partitions, Get_Log, Get_Log_Of_Partition};
        const bool readsAll = std::ranges::find(all, command) != all.end();
        EXPECT_EQ(steps.find("TEMP B-TREE") != std::string::npos,
                  std::ranges::find(sorted, command) != sorted.end());
        const bool insertsValues = CommandName(command).substr(0, 4) == "Add_";
        EXPECT_EQ(steps.find("SCAN ") != std::string::npos, readsAll);
        EXPECT_EQ(steps.find("SEARCH ") != std::string::npos, !readsAll && !insertsValues);
    }
}

TEST(StoreFile, TellWhatTheStoreRefuses) {
    const TestStore store;
    DataBase dataBase(Waits{.work = std::chrono::milliseconds(300)});
    DataBase impatient(Waits{.lock = std::chrono::milliseconds(50)});
    const std::string file = store.File().string();
    {
        SQLite::Database owner(file, SQLite::OPEN_READWRITE);
        owner.exec("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; DELETE FROM Node_Type_Max");
        ExpectRaised(StoreLocked, {"database is locked", "Get_Node_Names", file},
                     [&] { Perform(impatient, Get_Node_Names, {}); });
    }
    const auto addThere = [](DataBase& there, const char* sequence) {
        there.Execute(Add_AUTO_PromptsNode, {1, 2, sequence, 0, 1, 1, "MSG"});
    };
    const auto add = [&](const char* sequence) { addThere(dataBase, sequence); };
    for (const char* sequence : {"1", "one", ""}) {
        ExpectRaised(sequence == std::string("1") ? DuplicateKey : StoreFailure,
                     {"Detail_AUTO_Prompts.SequenceNo", file}, [&] { add(sequence); });
    }
    EXPECT_NO_THROW(add("4"));
    ExpectRaised(InvalidProcedureCall, {"Delete_AUTO_PromptsNode", "3 parameters"}, [&] {
        dataBase.Execute(Delete_AUTO_PromptsNode, {1, 2});
    });
    {
        SQLite::Database other(file, SQLite::OPEN_READWRITE);
        other.exec("BEGIN IMMEDIATE");
        ExpectRaised(StoreLocked, {"locked", "Add_AUTO_PromptsNode", file},
                     [&] { addThere(impatient, "5"); });
        EXPECT_EQ(Perform(dataBase, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
        EXPECT_NO_THROW(dataBase.Flush()) << "what was written lasts without a lock";
        const std::jthread letsGo([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            other.exec("COMMIT");
        });
        EXPECT_NO_THROW(add("5")) << "a lock that does not last is waited for";
    }
    // Another program's views and triggers may never end.
    const std::string endless = "(WITH RECURSIVE Endless(i) AS (SELECT 1 UNION ALL SELECT i FROM Endless)"
                                " SELECT MAX(i) FROM Endless)";
    store.Execute("CREATE TRIGGER Slow BEFORE INSERT ON Detail_AUTO_Prompts BEGIN SELECT " + endless +
                  "; END");
    const auto before = std::chrono::steady_clock::now();
    ExpectRaised(StoreFailure, {"Stopped after 1 second of", "Add_AUTO_PromptsNode", file},
                 [&] { add("6"); });
    const std::atomic<bool> unwanted = true;
    DataBase vain(Waits{.unwanted = &unwanted});
    ExpectRaised(StoreFailure, {"Stopped"}, [&] { addThere(vain, "6"); });
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(5)) << "nobody waits for it";
    store.Execute("DROP TRIGGER Slow");
    EXPECT_NO_THROW(add("6"));
}

TEST(StoreFile, KeepTheLogShort) {
    const TestStore store;
    DataBase dataBase;
    constexpr std::uintmax_t limit = 8192 * 4096;
    const auto write = [&](int commands) {
        for (int i = 0; i < commands; ++i) {
            dataBase.Execute(Update_Node_General_Pool, {i, "", 1, 2, 9, 8});
        }
        dataBase.Flush();
        return std::filesystem::file_size(store.File().string() + "-wal");
    };
    // One run of commands that is longer than what is kept, and what comes after it.
    const std::uintmax_t longest = write(10'000);
    EXPECT_GT(longest, limit);
    for (int saves = 0; saves < 3; ++saves) {
        EXPECT_LE(write(10'000), longest + longest / 50);
    }
    EXPECT_LE(write(1), limit);
}

TEST(StoreFile, ReadOneStateAlsoWhereTheyWereReadBefore) {
    for (const char* mode : {"PRAGMA journal_mode", "PRAGMA journal_mode = DELETE"}) {
        const TestStore store;
        static_cast<void>(store.Rows(mode));
        DataBase dataBase;
        const auto highest = [&] {
            return Perform(dataBase, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number");
        };
        EXPECT_EQ(highest(), Texts{"250"});
        {
            const Snapshot snapshot(dataBase);
            EXPECT_EQ(highest(), Texts{"250"});
            store.Execute("UPDATE Node_Type_Max SET Max_Number = 249 WHERE Max_Number = 250");
            EXPECT_EQ(highest(), Texts{"250"}) << mode;
        }
        EXPECT_EQ(highest(), Texts{"249"}) << mode;
        // Nor does it wait for what comes to no end.
        store.Execute("DROP TABLE SR_Node_Type_Names; CREATE VIEW SR_Node_Type_Names AS WITH RECURSIVE "
                      "Endless(ID) AS (SELECT 1 UNION ALL SELECT ID FROM Endless) SELECT ID, ID AS "
                      "English_Name FROM Endless ORDER BY 2");
        std::atomic<bool> unwanted = false;
        DataBase vain(Waits{.unwanted = &unwanted});
        const Snapshot snapshot(vain);
        unwanted = true;
        ExpectRaised(StoreFailure, {"Stopped", "Get_Node_Names"}, [&] { Perform(vain, Get_Node_Names, {}); });
    }
}

TEST(StoreFile, ReadAReadOnlyStoreAndTellWhereTheyWouldWrite) {
    const TestStore store;
    std::filesystem::permissions(store.Folder(), std::filesystem::perms(0755));
    std::filesystem::permissions(store.File(), std::filesystem::perms(0444));
    WriteFile(store.File().string() + "-wal", "of one that was killed");
    // Nothing is read-only to root, who becomes nobody.
    const uid_t self = geteuid();
    if (self == 0 && seteuid(65534) != 0) {
        GTEST_SKIP() << "root cannot become somebody else here";
    }
    DataBase kept;
    ExpectRaised(StoreFailure, {"the folder that it lies in"}, [&] { Perform(kept, Get_Node_Names, {}); });
    // With a log as it is made, and with a rollback journal, which needs no files beside it to be read.
    for (const char* mode : {"PRAGMA journal_mode", "PRAGMA journal_mode = DELETE"}) {
        ASSERT_EQ(seteuid(self), 0);
        static_cast<void>(store.Rows(mode));
        store.Execute("DROP TABLE IF EXISTS SR_Node_Type_Names");
        ASSERT_EQ(seteuid(self == 0 ? 65534 : self), 0);
        DataBase dataBase;
        EXPECT_EQ(Perform(dataBase, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
        ExpectRaised(StoreFailure, {"write the store's file and the folder", store.File().string()}, [&] {
            Perform(dataBase, Delete_AUTO_PromptsNode, {"1", "2", "1"});
        });
        EXPECT_EQ(FailureOf([&] { Perform(dataBase, Get_Node_Names, {}); }).find("write the store's"),
                  std::string::npos);
    }
    ASSERT_EQ(seteuid(self), 0);
}

TEST(StoreFile, NeitherFindNorMakeAStoreThatIsNotThere) {
    const TestStore store;
    DataBase patient;
    const auto expectNone = [&](ErrorNumber number) {
        ExpectRaised(number, {store.File().string(), "Get_Node_Names"},
                     [&] { Perform(patient, Get_Node_Names, {}); });
    };
    std::filesystem::remove(store.File());
    expectNone(StoreNotFound);
    EXPECT_TRUE(std::filesystem::is_empty(store.File().parent_path()));
    const std::string signature("SQLite format 3\0", 16);
    for (const std::string& bytes : {std::string(), std::string(5000, '\0'), signature + "and no more"}) {
        std::ofstream(store.File(), std::ios::binary) << bytes;
        expectNone(bytes.starts_with(signature) ? StoreFailure : StoreNotRecognized);
        EXPECT_EQ(std::filesystem::file_size(store.File()), bytes.size());
    }
    std::filesystem::remove(store.File());
    // The same connection finds the store once it is there.
    CreateStore(store.File(), StoreContent::Demo);
    EXPECT_EQ(store.Value("PRAGMA user_version"), std::to_string(StoreVersion));
    store.Execute("PRAGMA user_version = " + std::to_string(StoreVersion + 1));
    expectNone(StoreNotRecognized);
    // The number of another program says nothing about the tables.
    store.Execute("PRAGMA application_id = 0");
    EXPECT_EQ(Perform(patient, Get_Max_NodeNumber, {"1", "2", "0"}, "Max_Number"), Texts{"250"});
}

} // namespace
} // namespace KAL_AUTO_Node
