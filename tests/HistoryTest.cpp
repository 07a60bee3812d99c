#include "StoredNode.h"
#include "history/NodeSave.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"

#include <gtest/gtest.h>

namespace KAL_AUTO_Node {
namespace {

using Texts = std::vector<std::string>;

constexpr NodePlace Place{{1, 2}, 8};

// One who saves AUTO 8, over a connection of their own.
struct Saver {
    [[nodiscard]] AutoNode Read() { return ReadAutoNode(dataBase, Place.partition, Place.number).value(); }

    // Begins, writes and ends a save of the node under a new label.
    void Save(const std::string& label) {
        AutoNode node = Read();
        NodeSave save(dataBase, history, Place);
        EXPECT_FALSE(save.Begin(node, 0));
        node.label = label;
        WriteAutoNode(dataBase, Place.partition, Place.number, node, "today");
        save.Finish();
    }

    DataBase dataBase;
    History history{dataBase};
};

class HistoryOfANode : public testing::Test {
  protected:
    [[nodiscard]] Texts Stored() const { return StoredNode(store_, Place.number); }

    // "work state" of the versions, newest first.
    [[nodiscard]] Texts Versions() const {
        return store_.Rows("SELECT Work || ' ' || State FROM Node_AUTO_Version WHERE NodeNumber = 8"
                           " ORDER BY VersionNo DESC");
    }

    // Makes the latest version look begun by another.
    void Disguise(const std::string& host, int process, const std::string& begunAt) const {
        store_.Execute("UPDATE Node_AUTO_Version SET State = 'begun', HostName = '" + host +
                       "', ProcessID = " + std::to_string(process) + ", ProcessStart = 'then', BegunAt = '" +
                       begunAt + "' WHERE VersionNo = (SELECT MAX(VersionNo) FROM Node_AUTO_Version)");
    }

    const TestStore store_;
    Saver anna_;
    Saver ben_;
};

TEST_F(HistoryOfANode, KeepsItAsItWasBeforeEachChange) {
    store_.Execute("UPDATE Node_AUTO SET RetryLimit = NULL, AbortNodeType = 'C:\\temp\\old' WHERE PartID = 2 "
                   "AND NodeNumber = 8;"
                   "UPDATE Detail_AUTO_Action SET SequenceNo = 70, DTMFRangeLow = NULL WHERE PartID = 2 AND"
                   " NodeMasterID = 8 AND SequenceNo = 8;"
                   "UPDATE Node_General_Pool SET DateModified = NULL WHERE PartID = 2 AND NodeTypeID = 9");
    const Texts original = Stored();
    anna_.Save("First");
    const Texts first = Stored();
    ben_.Save("Second");
    EXPECT_EQ(Versions(), (Texts{"save finished", "save finished"}));
    EXPECT_EQ(anna_.history.Before(Place, 2).node->label, "First");
    EXPECT_FALSE(anna_.history.Unfinished(Place));

    anna_.history.PutBack(Place, 1, "restore");
    EXPECT_EQ(Stored(), original);
    anna_.history.PutBack(Place, 2, "restore");
    EXPECT_EQ(Stored(), first);
    // Also where another program has deleted the node meanwhile.
    store_.Execute("DELETE FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 8;"
                   "DELETE FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 8;"
                   "DELETE FROM Detail_AUTO_Action WHERE PartID = 2 AND NodeMasterID = 8");
    anna_.history.PutBack(Place, 1, "restore");
    EXPECT_EQ(Stored(), original);
    EXPECT_EQ(Versions().size(), 5U);
    EXPECT_THROW(anna_.history.PutBack(Place, 5, "restore"), RuntimeError) << "there was no node";
    EXPECT_THROW(static_cast<void>(anna_.history.Before(Place, 6)), RuntimeError);
}

TEST_F(HistoryOfANode, StandsInTheWayOfASaveThatWouldGoOverAnothersUnseen) {
    const AutoNode loaded = anna_.Read();
    ben_.Save("Ben's");
    NodeSave save(anna_.dataBase, anna_.history, Place);
    const auto changed = save.Begin(loaded, 0);
    ASSERT_TRUE(changed && changed->kind == Obstacle::Changed);
    EXPECT_EQ(changed->stored->label, "Ben's");
    EXPECT_EQ(changed->by->number, 1);
    EXPECT_EQ(Versions().size(), 1U);
    EXPECT_FALSE(save.Begin(*changed->stored, 1));

    // Begun by a process that lives, and by others.
    NodeSave other(ben_.dataBase, ben_.history, Place);
    const auto busy = other.Begin(*changed->stored, 1);
    ASSERT_TRUE(busy && busy->kind == Obstacle::BeingSaved);
    EXPECT_EQ(busy->by->number, 2);
    EXPECT_THROW(ben_.history.PutBack(Place, 1, "restore"), RuntimeError);
    for (const auto& [host, begunAt, lives] : {std::tuple{std::string("elsewhere"), TimeStamp(), true},
                                               {"elsewhere", TimeStamp(1), false},
                                               {"elsewhere", TimeStamp(-1), false},
                                               {HostName(), TimeStamp(), false}}) {
        Disguise(host, 1, begunAt);
        EXPECT_EQ(IsBeingMade(ben_.history.Versions(Place).front()), lives) << host << begunAt;
    }
    store_.Execute("DELETE FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 8");
    EXPECT_TRUE(NodeSave(anna_.dataBase, anna_.history, Place).Begin(loaded, 0)->kind == Obstacle::Gone);
}

class StoreFile : public HistoryOfANode {};

TEST_F(StoreFile, IsNotSaidToBeSavedWhereItWasReplacedMeanwhile) {
    NodeSave save(anna_.dataBase, anna_.history, Place);
    EXPECT_FALSE(save.Begin(anna_.Read(), 0));
    std::filesystem::copy_file(store_.File(), store_.Folder() / "other");
    std::filesystem::rename(store_.Folder() / "other", store_.File());
    try {
        save.Finish();
        ADD_FAILURE() << "finished";
    } catch (const RuntimeError& error) {
        EXPECT_TRUE(std::string_view(error.what()).starts_with("The store that is there now has not got"))
            << error.what();
    }
}

TEST_F(HistoryOfANode, TellsAndTakesBackASaveThatDidNotFinish) {
    const Texts original = Stored();
    const AutoNode node = anna_.Read();
    const auto begin = [&] {
        EXPECT_FALSE(NodeSave(anna_.dataBase, anna_.history, Place).Begin(anna_.Read(), 0));
    };
    // Ended before its first write: nobody is asked.
    begin();
    Disguise(HostName(), 1, TimeStamp());
    EXPECT_FALSE(ben_.history.Unfinished(Place));
    EXPECT_EQ(Versions(), Texts{});

    // Two in a row that ended half-way come back one after the other.
    begin();
    Batch batch(anna_.dataBase);
    DeleteDetails(batch, Place.partition, Place.number);
    batch.Run();
    Disguise(HostName(), 1, TimeStamp());
    const Texts half = Stored();
    begin();
    store_.Execute("UPDATE Node_AUTO SET NodeDescription = 'Half' WHERE PartID = 2 AND NodeNumber = 8");
    Disguise(HostName(), 1, TimeStamp());
    for (const auto& [version, before] : {std::pair{2, half}, {1, original}}) {
        const auto unfinished = ben_.history.Unfinished(Place);
        ASSERT_TRUE(unfinished);
        EXPECT_EQ(unfinished->number, version);
        ben_.history.PutBack(Place, version, "put back");
        EXPECT_EQ(Stored(), before);
    }
    EXPECT_FALSE(ben_.history.Unfinished(Place));

    // What is put back further than its state before goes with it; what cannot be read is told all the same.
    begin();
    store_.Execute("UPDATE Node_AUTO SET NodeDescription = 'Half' WHERE PartID = 2 AND NodeNumber = 8");
    Disguise(HostName(), 1, TimeStamp());
    EXPECT_EQ(ben_.history.PutBack(Place, 2, "restore").node->label, "Half");
    EXPECT_FALSE(ben_.history.Unfinished(Place));
    store_.Execute("UPDATE Node_AUTO_Version SET State = 'failed', Content = '{}' WHERE VersionNo = 6");
    EXPECT_TRUE(ben_.history.Unfinished(Place));
}

TEST_F(HistoryOfANode, IsMadeWhereAStoreHasNoneAndDoneWithoutWhereItMayNot) {
    store_.Execute("DROP TABLE Node_AUTO_Version; DROP TABLE Node_Creation");
    EXPECT_EQ(anna_.history.Versions(Place).size(), 0U);
    EXPECT_EQ(anna_.history.Prune(), 0);
    anna_.Save("First");
    EXPECT_EQ(Versions(), Texts{"save finished"});

    store_.Execute(
        "DROP TABLE Node_AUTO_Version; DROP TABLE Node_Creation; CREATE VIEW Node_Creation AS SELECT 1");
    Saver late;
    late.Save("Second");
    EXPECT_EQ(late.Read().label, "Second");
    NodeSave save(late.dataBase, late.history, Place);
    EXPECT_FALSE(save.Begin(late.Read(), 0));
    EXPECT_FALSE(save.Guarded());
    EXPECT_TRUE(save.Begin(AutoNode(), 0)->kind == Obstacle::Changed);
}

TEST_F(HistoryOfANode, IsNoTextWithMoreLevelsThanTheStackBears) {
    const std::string deep = std::string(200'000, '[') + std::string(200'000, ']');
    EXPECT_THROW(ContentOf(R"({"bytes": true, "register": null, "node": )" + deep + '}'), RuntimeError);
}

TEST_F(HistoryOfANode, DropsWhatIsBothOldAndManyVersionsAgo) {
    for (int save = 0; save < 25; ++save) {
        anna_.Save(std::to_string(save));
    }
    EXPECT_EQ(Versions().size(), 25U);
    store_.Execute("UPDATE Node_AUTO_Version SET BegunAt = '" + TimeStamp(100) + "' WHERE VersionNo <> 2");
    EXPECT_EQ(anna_.history.Prune(), 4);
    EXPECT_EQ(anna_.history.Before(Place, 2).node->label, "0");
    anna_.Save("Last");
    EXPECT_EQ(Versions().size(), 21U);
}

} // namespace
} // namespace KAL_AUTO_Node
