#include "StoredNode.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"
#include "store/PortableSql.h"
#include "store/StoreFormat.h"
#include "store/UpgradeStore.h"
#include "testing/Saver.h"

#include <gtest/gtest.h>

namespace KAL_AUTO_Node {
namespace {

using Texts = std::vector<std::string>;

constexpr NodePlace Place{{1, 2}, 8};

// Loads the node and saves it under a new label.
void SaveAs(Saver& saver, const std::string& label) {
    AutoNode node = saver.Load();
    node.label = label;
    EXPECT_FALSE(saver.Save(node)) << label;
}

class HistoryOfANode : public testing::Test {
  protected:
    [[nodiscard]] Texts Stored() const { return StoredNode(store_, Place.number); }

    // "work state" of the versions, newest first.
    [[nodiscard]] Texts Versions() const {
        return store_.Rows("SELECT Work || ' ' || State FROM Node_AUTO_Version WHERE NodeNumber = 8"
                           " ORDER BY VersionNo DESC");
    }

    // Makes the latest version look begun by a process of that machine's that has ended.
    void Die(const std::string& machine = ThisProcess().machine,
             const std::string& begunAt = TimeStamp()) const {
        store_.Execute("UPDATE Node_AUTO_Version SET State = 'begun', Machine = '" + machine +
                       "', ProcessID = 1, ProcessStart = 'then', BegunAt = '" + begunAt +
                       "' WHERE VersionNo = (SELECT MAX(VersionNo) FROM Node_AUTO_Version)");
    }

    const TestStore store_;
    Saver anna_{Place};
    Saver ben_{Place, {.save = std::chrono::milliseconds(100)}};
};

TEST_F(HistoryOfANode, KeepsItAsItWasBeforeEachChange) {
    store_.Execute("UPDATE Node_AUTO SET RetryLimit = NULL, AbortNodeType = 'C:\\temp\\old' WHERE PartID = 2 "
                   "AND NodeNumber = 8;"
                   "UPDATE Detail_AUTO_Action SET SequenceNo = 70, DTMFRangeLow = NULL WHERE PartID = 2 AND"
                   " NodeMasterID = 8 AND SequenceNo = 8;"
                   "UPDATE Node_General_Pool SET DateModified = NULL WHERE PartID = 2 AND NodeTypeID = 9");
    const Texts original = Stored();
    SaveAs(anna_, "First");
    const Texts first = Stored();
    SaveAs(ben_, "Second");
    EXPECT_EQ(Versions(), (Texts{"save finished", "save finished"}));
    EXPECT_EQ(anna_.Versions().Before(Place, 2).node->label, "First");
    EXPECT_FALSE(anna_.Versions().Unfinished(Place));

    anna_.Versions().PutBack(Place, 1, "restore");
    EXPECT_EQ(Stored(), original);
    anna_.Versions().PutBack(Place, 2, "restore");
    EXPECT_EQ(Stored(), first);
    // Also where another program has deleted the node meanwhile.
    store_.Execute("DELETE FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 8;"
                   "DELETE FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 8;"
                   "DELETE FROM Detail_AUTO_Action WHERE PartID = 2 AND NodeMasterID = 8");
    anna_.Versions().PutBack(Place, 1, "restore");
    EXPECT_EQ(Stored(), original);
    EXPECT_EQ(Versions().size(), 5U);
    anna_.Versions().PutBack(Place, 5, "restore");
    EXPECT_FALSE(anna_.Read().node || anna_.Read().entry) << "there was no node";
    anna_.Versions().PutBack(Place, 6, "restore");
    EXPECT_EQ(Stored(), original);
    EXPECT_THROW(static_cast<void>(anna_.Versions().Before(Place, 8)), RuntimeError);
}

TEST_F(HistoryOfANode, StandsInTheWayOfASaveThatWouldGoOverAnothersUnseen) {
    AutoNode node = anna_.Load();
    SaveAs(ben_, "Ben's");
    node.label = "Anna's";
    const auto changed = anna_.Save(node);
    ASSERT_TRUE(changed && changed->kind == Obstacle::Changed);
    EXPECT_EQ(changed->stored.content.node->label, "Ben's");
    EXPECT_EQ(changed->by->number, 1);
    EXPECT_EQ(Versions().size(), 1U);
    // So does the register alone, changed by a program that keeps no history.
    anna_.Load();
    store_.Execute(
        "UPDATE Node_General_Pool SET NodeDescription = 'Other' WHERE PartID = 2 AND NodeTypeID = 9"
        " AND NodeNumber = 8");
    const auto registered = anna_.Save(node);
    ASSERT_TRUE(registered && !registered->by);
    EXPECT_EQ(Differences(ben_.Read(), registered->stored.content), Texts{});
    NodeContent other = ben_.Read();
    other.entry = {"A", "L", std::nullopt};
    EXPECT_EQ(Differences(ben_.Read(), other),
              (Texts{"in the register type \"AUTO\" → \"A\"", "in the register label \"Other\" → \"L\"",
                     "in the register date \"" + std::string(SaveDate) + "\" → nothing"}));
    anna_.Load();
    store_.Execute("DELETE FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 8");
    ASSERT_TRUE(anna_.Save(node));
    EXPECT_EQ(Differences(registered->stored.content, anna_.Met->stored.content),
              Texts{"no longer in the register"});

    // While a person is asked about it others wait in a file; on a server they go first, and are seen.
    anna_.Load();
    anna_.GoingOver = true;
    std::optional<Obstacle> busy;
    const auto asked = [&](NodeSave& /*save*/) {
        AutoNode bens = ben_.Load();
        bens.label = "Ben's again";
        busy = ben_.Save(bens);
        EXPECT_TRUE(TestStore::OnServer() || busy->kind == Obstacle::BeingSaved);
        if (busy) {
            EXPECT_EQ(busy->by->number, 2);
            EXPECT_THROW(ben_.Versions().PutBack(Place, 1, "restore"), RuntimeError);
        }
    };
    EXPECT_FALSE(anna_.Save(node, asked));
    EXPECT_EQ(anna_.Met.has_value(), TestStore::OnServer());
    // A program without marks changes it meanwhile.
    EXPECT_FALSE(anna_.Save(node, [&](NodeSave& /*save*/) {
        store_.Execute("UPDATE Node_AUTO SET RetryLimit = 77 WHERE PartID = 2 AND NodeNumber = 8");
        EXPECT_FALSE(ben_.Versions().Unfinished(Place)) << "the save still runs";
    }));
    ASSERT_TRUE(anna_.Met && anna_.Met->kind == Obstacle::Changed);
    EXPECT_EQ(anna_.Met->stored.content.node->settings.retryLimit, 77);
    EXPECT_EQ(ben_.Read().node->label, "Anna's");
    EXPECT_THROW(static_cast<void>(anna_.Save(node, [](NodeSave& /*save*/) { throw 5; })), int);
    EXPECT_EQ(Versions(), Texts(TestStore::OnServer() ? 4 : 3, "save finished"));

    // Of the same machine by name, which says nothing: another boot, other processes, one that is not told.
    const std::string here = ThisProcess().machine;
    const auto boot = here.find(' ');
    const auto space = here.find(' ', boot + 1);
    for (const auto& [machine, begunAt, lives] :
         {std::tuple{here, TimeStamp(), false},
          {"another" + here.substr(boot), TimeStamp(), true},
          {"another" + here.substr(boot), TimeStamp(1), false},
          {here.substr(0, boot) + " pid:[1]" + here.substr(space), TimeStamp(), true},
          {std::string(), TimeStamp(), true},
          {std::string(), TimeStamp(1), false},
          {std::string(), TimeStamp(-1), false}}) {
        Die(machine, begunAt);
        EXPECT_TRUE(TestStore::OnServer() || IsBeingMade(ben_.Versions().Newest(Place).value()) == lives)
            << machine << begunAt;
    }
    store_.Execute("DELETE FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 8");
    EXPECT_TRUE(anna_.Save(node)->kind == Obstacle::Gone);
}

// No statement fails, and rows are missing all the same.
TEST_F(HistoryOfANode, SaysWhatAStoreHasNotTaken) {
    AutoNode node = anna_.Load();
    for (const auto& [write, missing] :
         {std::pair("UPDATE ON Node_AUTO", "node 1 are"), {"INSERT ON Detail_AUTO_Action", "node 8 are"}}) {
        store_.Skip(write);
        node.label = write;
        const std::string told = FailureOf([&] { static_cast<void>(anna_.Save(node)); });
        EXPECT_NE(told.find(missing), std::string::npos) << told;
        EXPECT_NE(anna_.Latest().WhatIsLeft(), NodeSave::Left::Nothing);
        EXPECT_EQ(ben_.Versions().Unfinished(Place).has_value(), !TestStore::OnServer());
        anna_.Load();
    }
}

class StoreFile : public HistoryOfANode {};

TEST_F(StoreFile, IsNotSaidToBeSavedWhereItWasReplacedMeanwhile) {
    const AutoNode node = anna_.Load();
    try {
        static_cast<void>(anna_.Save(node, [&](NodeSave& /*save*/) {
            std::filesystem::copy_file(store_.File(), store_.Folder() / "other");
            std::filesystem::rename(store_.Folder() / "other", store_.File());
        }));
        ADD_FAILURE() << "saved";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::StoreNotFound) << error.what();
    }
}

TEST_F(StoreFile, TellsAndTakesBackASaveThatDidNotFinish) {
    const Texts original = Stored();
    const auto begin = [&] {
        Batch mark(anna_.Store());
        static_cast<void>(anna_.Versions().Add(mark, Place, "save", VersionState::Begun, anna_.Read()));
    };
    // Ended before its first write: nobody is asked, and the next save takes its place.
    begin();
    Die();
    EXPECT_FALSE(ben_.Versions().Unfinished(Place));
    EXPECT_EQ(Versions(), Texts{"save begun"});
    ben_.Versions().DropUntouched(Place);
    EXPECT_EQ(Versions(), Texts{});
    begin();
    Die();

    // Two in a row that ended half-way come back one after the other.
    Batch batch(anna_.Store());
    DeleteDetails(batch, Place);
    batch.Run();
    const Texts half = Stored();
    begin();
    store_.Execute("UPDATE Node_AUTO SET NodeDescription = 'Half' WHERE PartID = 2 AND NodeNumber = 8");
    Die();
    for (const auto& [version, before] : {std::pair{2, half}, {1, original}}) {
        const auto unfinished = ben_.Versions().Unfinished(Place);
        ASSERT_TRUE(unfinished);
        EXPECT_EQ(unfinished->number, version);
        EXPECT_TRUE(ben_.Versions().PutBackUnfinished(Place, version));
        EXPECT_FALSE(anna_.Versions().PutBackUnfinished(Place, version)) << "somebody else has";
        EXPECT_EQ(Stored(), before);
    }
    EXPECT_FALSE(ben_.Versions().Unfinished(Place));

    // What is put back further than its state before goes with it; what cannot be read is told all the same.
    begin();
    store_.Execute("UPDATE Node_AUTO SET NodeDescription = 'Half' WHERE PartID = 2 AND NodeNumber = 8");
    Die();
    EXPECT_EQ(ben_.Versions().PutBack(Place, 2, "restore").node->label, "Half");
    // Whose mark was not taken is over for those who made it, and marked when that can be.
    store_.Refuse("UPDATE ON Node_AUTO_Version", "NEW.State = 'finished'");
    AutoNode node = anna_.Load();
    node.label = "Whole";
    EXPECT_THROW(static_cast<void>(anna_.Save(node)), RuntimeError);
    EXPECT_EQ(anna_.Versions().Newest(Place)->state, VersionState::Finished);
    EXPECT_EQ(ben_.Versions().Newest(Place)->state, VersionState::Begun);
    store_.Allow();
    anna_.Versions().CatchUp();
    EXPECT_EQ(ben_.Versions().Newest(Place)->state, VersionState::Finished);
    EXPECT_FALSE(ben_.Versions().Unfinished(Place));
    store_.Execute("UPDATE Node_AUTO_Version SET State = 'failed', Content = '[]' WHERE VersionNo = 7");
    EXPECT_TRUE(ben_.Versions().Unfinished(Place));
}

TEST_F(HistoryOfANode, IsMadeWhereAStoreHasNoneAndDoneWithoutWhereItMayNot) {
    store_.Execute("DROP TABLE Node_AUTO_Version; DROP TABLE Node_Creation");
    EXPECT_EQ(anna_.Versions().Versions(Place).size(), 0U);
    EXPECT_EQ(anna_.Versions().Prune(), 0);
    SaveAs(anna_, "First");
    EXPECT_EQ(Versions(), Texts{"save finished"});

    // Nothing that other programs do to it costs more than the history.
    for (const char* harm :
         {"DROP TABLE Node_Creation", "DROP TABLE Node_AUTO_Version; DROP TABLE IF EXISTS Node_Creation",
          "UPDATE Node_AUTO_Version SET ProcessID = 99999999999, VersionNo = 2147483647 WHERE VersionNo = "
          "(SELECT MAX(VersionNo) FROM Node_AUTO_Version)",
          "UPDATE Node_AUTO_Version SET VersionNo = 9223372036854775807 WHERE VersionNo = 2147483648"}) {
        store_.Execute(harm);
        SaveAs(anna_, harm);
        SaveAs(anna_, harm);
        EXPECT_EQ(ben_.Read().node->label, harm);
        EXPECT_FALSE(anna_.Versions().Unfinished(Place));
    }

    if (TestStore::OnServer()) {
        return;
    }
    for (const char* instead :
         {"DROP TABLE Node_Creation; CREATE VIEW Node_Creation AS SELECT 1",
          "DROP VIEW Node_Creation; CREATE INDEX Node_AUTO_Version ON Node_AUTO (NodeType)"}) {
        store_.Execute(std::string("DROP TABLE IF EXISTS Node_AUTO_Version; ") + instead);
        Saver late(Place);
        SaveAs(late, instead);
        EXPECT_EQ(late.Read().node->label, instead);
        EXPECT_FALSE(late.Save(late.Load(), [](NodeSave& save) { EXPECT_FALSE(save.Guarded()); }));
        const AutoNode loaded = late.Load();
        store_.Execute(
            "UPDATE Node_AUTO SET RetryLimit = RetryLimit + 1 WHERE PartID = 2 AND NodeNumber = 8");
        EXPECT_TRUE(late.Save(loaded)->kind == Obstacle::Changed);
    }
}

TEST_F(StoreFile, HoldsANodeHalfMadeThatIsMadeWhole) {
    const NodePlace made{{1, 2}, 77};
    store_.Execute("INSERT INTO Node_Creation VALUES (1, 2, 9, 77, 1, 8, '11/25/26')");
    anna_.Store().Execute(Command::Duplicate_AUTO_Node, {77, 1, 2, 0});
    ASSERT_TRUE(anna_.Versions().IsHalfMade(made));
    anna_.Versions().MakeWhole(made);
    EXPECT_FALSE(anna_.Versions().IsHalfMade(made));
    EXPECT_EQ(ReadContent(anna_.Store(), {{1, 2}, 77}).entry->dateModified, "11/25/26");
    // A save that needs it goes on with what there is, and what a save has only begun with comes with its
    // state.
    const std::array needed = {RequiredNode{"AUTO 78", {9, 78}}};
    const auto exists = [&](int number) { return IsNodeExisted(anna_.Store(), {1, 2}, {9, number}); };
    store_.Execute("INSERT INTO Node_Creation VALUES (1, 2, 9, 78, 1, 8, '11/25/26')");
    anna_.Store().Execute(Command::Duplicate_AUTO_Node, {78, 1, 2, 0});
    EXPECT_FALSE(anna_.Save(anna_.Load(), [&](NodeSave& save) {
        save.CreateMissing(
            needed, SaveDate,
            {[](const auto&) { return CreationAudience::Answer::Create; }, [](const auto&...) {}, [] {}});
    }));
    EXPECT_TRUE(exists(78));
    store_.Execute("INSERT INTO Node_Creation VALUES (1, 2, 9, 79, 1, 8, '11/25/26')");
    anna_.Versions().PutBack(Place, 1, "restore");
    EXPECT_TRUE(exists(79));
}

// A store of an older version is used as it is, and brought up when that is asked for.
TEST_F(HistoryOfANode, OfAnOlderStoreIsReadAddedToAndBroughtUp) {
    const std::string sql = BytesOf(TEST_DATA "/store-1.sql");
    if (TestStore::OnServer()) {
        store_.Execute("DROP SCHEMA public CASCADE; CREATE SCHEMA public;" + ServerTables(sql) +
                       "COMMENT ON TABLE Node_AUTO IS '" + VersionComment(1) + '\'');
    } else {
        for (const std::string& table : store_.Tables()) {
            store_.Execute("DROP TABLE " + table);
        }
        store_.Execute(sql + "PRAGMA user_version = 1");
    }
    EXPECT_EQ(anna_.Versions().Versions(Place).size(), 2U);
    EXPECT_TRUE(IsOlder(anna_.Store()));
    const NodePlace half{{1, 2}, 1};
    EXPECT_EQ(anna_.Versions().Before(half, 1).node->label, "Caf\xE9") << "bytes that are no UTF-8";
    if (!TestStore::OnServer()) {
        EXPECT_EQ(anna_.Versions().Unfinished(half).value().number, 2);
    }
    SaveAs(anna_, "Older");

    // The copy takes nothing's place.
    std::ofstream(store_.File().string() + ".version-1") << "mine";
    const auto upgraded = UpgradeStore(anna_.Store());
    EXPECT_EQ(upgraded.from, 1);
    EXPECT_EQ(upgraded.to, StoreVersion);
    EXPECT_EQ(UpgradeStore(ben_.Store()).from, StoreVersion);
    EXPECT_EQ(upgraded.copy.has_value(), !TestStore::OnServer());
    if (upgraded.copy) {
        DataBase copy(*upgraded.copy);
        EXPECT_EQ(ReadAutoNode(copy, Place)->label, "Older");
        EXPECT_TRUE(IsOlder(copy));
    }
    ben_.Versions().PutBack(half, 2, "put back");
    EXPECT_EQ(ReadAutoNode(ben_.Store(), half)->label, "Main menu");
    SaveAs(ben_, "Newer");
    ben_.Versions().PutBack(Place, 1, "restore");
    EXPECT_EQ(ben_.Read().node->label, "Sales");
    EXPECT_EQ(Versions(), (Texts{"restore finished", "save finished", "save finished", "restore finished",
                                 "import finished"}));
}

// Texts of other versions: what is missing has its default, what is not known says nothing.
TEST_F(HistoryOfANode, IsReadLeniently) {
    const auto label = [](const std::string& text) { return ContentOf(text).node.value().label; };
    EXPECT_EQ(label(R"({"node":{"type":"AUTO","label":"Old"}})"), "Old");
    EXPECT_EQ(
        label(R"({"version":4,"node":{"label":"New","voice":[{"a":1}],"settings":{"pace":2}},"by":{}})"),
        "New");
    EXPECT_EQ(label(R"({"version":2,"node":{"type":"A","label":"Café"},"bytes":true})"), "Caf\xE9");
    EXPECT_EQ(label(R"({"version":3,"node":{"type":"A","label":{"bytes": "43e9"}}})"), "C\xE9");
    for (const char* text : {"", "{}", "[]", R"({"node":5})", R"({"node":{"prompts":[5]}})",
                             R"({"node":{"settings":{"retryLimit":"3"}}})", R"({"node":{},"register":7})"}) {
        EXPECT_THROW(ContentOf(text), RuntimeError) << text;
    }
}

TEST_F(HistoryOfANode, IsNoTextWithMoreLevelsThanTheStackBears) {
    const std::string deep = std::string(200'000, '[') + std::string(200'000, ']');
    EXPECT_THROW(ContentOf(R"({"bytes": true, "register": null, "node": )" + deep + '}'), RuntimeError);
}

TEST_F(HistoryOfANode, DropsWhatIsBothOldAndManyVersionsAgo) {
    for (int save = 0; save < 25; ++save) {
        SaveAs(anna_, std::to_string(save));
    }
    EXPECT_EQ(Versions().size(), 25U);
    store_.Execute("UPDATE Node_AUTO_Version SET BegunAt = '" + TimeStamp(100) + "' WHERE VersionNo <> 2");
    EXPECT_EQ(anna_.Versions().Prune(), 4);
    EXPECT_EQ(anna_.Versions().Before(Place, 2).node->label, "0");
    SaveAs(anna_, "Last");
    EXPECT_EQ(Versions().size(), 21U);

    // Young ones up to a number, and never those that did not finish; with saves, a few at a time.
    store_.Execute(
        "WITH RECURSIVE Made(Number) AS (SELECT 27 UNION ALL SELECT Number + 1 FROM Made WHERE Number < "
        "1226) INSERT INTO Node_AUTO_Version SELECT ConfigID, PartID, NodeNumber, Number, Work, State, '" +
        TimeStamp() +
        "', UserName, HostName, Program, ProcessID, ProcessStart, Content, '' FROM Node_AUTO_Version, Made "
        "WHERE VersionNo = 26");
    SaveAs(anna_, "Later");
    EXPECT_EQ(Versions().size(), 21U + 1200 + 1 - 20);
    const auto all = static_cast<std::int64_t>(Versions().size());
    store_.Execute("UPDATE Node_AUTO_Version SET State = 'failed' WHERE VersionNo = 60");
    EXPECT_EQ(anna_.Versions().Prune(), all - History::MostVersions - 1);
    EXPECT_GT(anna_.Store().Compact().value_or(1), 0);
}

} // namespace
} // namespace KAL_AUTO_Node
