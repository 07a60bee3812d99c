#include "exchange/ExchangeImport.h"
#include "exchange/Export.h"
#include "exchange/LinesOfText.h"
#include "exchange/Tables.h"
#include "nodes/AutoNodeReader.h"
#include "platform/RuntimeError.h"
#include "testing/Relay.h"
#include "testing/Saver.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace KAL_AUTO_Node {
namespace {

std::string ExportOf(const TestStore& store, std::optional<Partition> scope = {}) {
    DataBase dataBase;
    Export(dataBase, scope, store.Folder() / "out.json");
    return BytesOf(store.Folder() / "out.json");
}

// The lines of what an import tells.
std::string ImportInto(const TestStore& store, const std::string& text, Import how = Import::Carry) {
    WriteFile(store.Folder() / "in.json", text);
    DataBase dataBase;
    std::string told;
    const ExchangeReport report = ImportExchange(
        dataBase, store.Folder() / "in.json", how,
        [&](const NodePlace& place, const auto& before, const auto& after) {
            told += "AUTO " + std::to_string(place.partition.number) + '/' + std::to_string(place.number);
            told += before ? after ? " changed" : " gone" : " new";
            told += before && after && !Differences(*before, *after).empty()
                        ? ": " + Differences(*before, *after)[0]
                        : "";
            told += '\n';
        });
    for (const auto& [name, added, changed, removed, rows, untold] : report.tables) {
        told += name + " +" + std::to_string(added) + " ~" + std::to_string(changed) + " -" +
                std::to_string(removed);
        told += untold > 0 ? " untold " + std::to_string(untold) + '\n' : "\n";
        for (const std::string& row : rows) {
            told += rows.size() < 10 ? "  " + row + '\n' : "";
        }
    }
    return told;
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
    const auto found = text.find(what);
    EXPECT_NE(found, std::string::npos) << what;
    return text.replace(found, what.size(), by);
}

TEST(Exchange, HasTheFormOfItsSchema) {
    const auto document = nlohmann::json::parse(BytesOf(DOCS "/exchange.schema.json"));
    const auto& tables = document.at("properties").at("tables").at("properties");
    EXPECT_EQ(tables.size(), StoreTables().size());
    for (const StoreTable& table : StoreTables()) {
        const auto& row = tables.at(table.name).at("items");
        EXPECT_EQ(row.at("required").size(), table.columns.size()) << table.name;
        for (const auto& [name, number, required] : table.columns) {
            EXPECT_EQ(row.at("properties").at(name).at("$ref"),
                      std::string("#/$defs/") + (required ? "" : "optional") + (number ? "Number" : "Text"))
                << table.name << '.' << name;
        }
    }
}

TEST(Exchange, BringsAStoreBackRowForRow) {
    const TestStore store;
    store.Execute(R"(
        UPDATE Node_AUTO SET NodeDescription = 'two
lines, "quoted" \    😀';
        UPDATE Node_MSG SET Comment = NULL, Password = '' WHERE NodeNumber = 4)");
    // Another program may have named a table in letters of another case.
    store.Execute("ALTER TABLE Node_CMD RENAME TO Other; ALTER TABLE Other RENAME TO NODE_cmd");
    store.Execute(R"(WITH RECURSIVE N(i) AS (VALUES (-3) UNION ALL SELECT i + 1 FROM N WHERE i < 1100)
                     INSERT INTO Node_General_Pool SELECT 1, 3, 9, i, 'X', NULL, NULL FROM N)");
    // Letters of a single byte each, as an old program may have written them; a server takes none.
    if (!TestStore::OnServer()) {
        store.Execute("UPDATE Node_MSG SET Comment = CAST(x'4361FEE9' AS TEXT) WHERE NodeNumber = 3");
    }
    const std::string whole = ExportOf(store);
    EXPECT_EQ(std::ranges::count(whole, '\n'),
              static_cast<std::ptrdiff_t>(2 + 2 * StoreTables().size() + 1924));
    EXPECT_EQ(whole.find(R"("Comment": {"bytes": "4361fee9"}, )") == std::string::npos,
              TestStore::OnServer());
    const std::string part = ExportOf(store, Partition{1, 1});
    EXPECT_EQ(ImportInto(store, "\xEF\xBB\xBF" + whole), "");
    // What a killed export left is written anew; through a link the file is replaced.
    WriteFile(store.Folder() / "out.json.new", std::string(4'000'000, 'x'));
    std::filesystem::create_symlink(store.Folder() / "out.json", store.Folder() / "link.json");
    // It is one state of the store, whatever others write meanwhile.
    int written = 0;
    {
        DataBase dataBase;
        Export(dataBase, {}, store.Folder() / "link.json", [&](std::uint64_t) {
            store.Execute("UPDATE Detail_DBN_Prompts SET PromptNodeNumber = PromptNodeNumber + 1");
            ++written;
        });
    }
    EXPECT_EQ(BytesOf(store.Folder() / "out.json"), whole);
    EXPECT_GT(written, 0);
    store.Execute("UPDATE Detail_DBN_Prompts SET PromptNodeNumber = PromptNodeNumber - " +
                  std::to_string(written));
    EXPECT_TRUE(std::filesystem::is_symlink(store.Folder() / "link.json"));
    EXPECT_EQ(store.Value("SELECT COUNT(*) FROM Node_AUTO_Version"), "0");
    const auto rows = [](const TestStore& of) {
        std::vector<std::string> all;
        for (const StoreTable& table : StoreTables()) {
            std::ranges::move(of.Rows("SELECT * FROM " + table.name), std::back_inserter(all));
        }
        std::ranges::sort(all);
        return all;
    };
    const auto before = rows(store);
    {
        const TestStore other(StoreContent::Empty);
        ImportInto(other, part);
        EXPECT_EQ(ExportOf(other, Partition{1, 1}), part);
        EXPECT_EQ(other.Value("SELECT COUNT(*) FROM SR_Node_Type_Names"), "0");
        std::optional<Relay> line;
        if (TestStore::OnServer()) {
            line.emplace(std::chrono::milliseconds(0));
            WriteFile(other.File(), line->AddressOf(other.Value("SELECT current_database()")) + '\n');
        }
        ImportInto(other, whole);
        EXPECT_LE(line ? line->Ways() : 0, 130) << "for 1,924 rows, most of them of AUTO nodes";
        EXPECT_EQ(other.Value("SELECT COUNT(*) FROM Node_AUTO_Version WHERE PartID = 3 AND VersionNo = 1"),
                  "1104");
        EXPECT_EQ(ExportOf(other), whole);
        EXPECT_EQ(rows(other), before);
    }
}

TEST(Exchange, TellsWhatChangesAndKeepsNodesInTheHistory) {
    const TestStore store;
    store.Execute(R"(WITH RECURSIVE N(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM N WHERE i < 2500)
                     INSERT INTO Node_General_Pool SELECT 1, 2, 77, i, 'X', NULL, NULL FROM N)");
    const std::string before = ExportOf(store);
    // What the text has and the store has not stands at the border of what is held at once, too.
    store.Execute(R"(
        UPDATE Node_AUTO SET NodeDescription = 'Other' WHERE PartID = 2 AND NodeNumber = 5;
        UPDATE Detail_AUTO_Action SET DTMFRangeLow = '8' WHERE PartID = 2 AND NodeMasterID = 6 AND SequenceNo = 1;
        DELETE FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 7;
        DELETE FROM Detail_AUTO_Prompts WHERE PartID = 2 AND NodeMasterID = 7;
        DELETE FROM Detail_AUTO_Action WHERE PartID = 2 AND NodeMasterID = 7;
        INSERT INTO Node_AUTO SELECT ConfigID, PartID, NodeTypeID, 39, NumberOfDigits, TerminatingDigit, SelectionTimeout,
               DigitTimeout, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType, InvalidNodeNumber,
               AbortNodeType, AbortNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID, InvalidNodeTypeID,
               AbortNodeTypeID, StarNodeTypeID, PoundNodeTypeID, StarNodeType, StarNodeNumber, PoundNodeType,
               PoundNodeNumber FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 1;
        UPDATE Node_MSG SET Comment = 'c', Password = 'p' WHERE PartID = 1 AND NodeNumber = 1;
        DELETE FROM Node_General_Pool WHERE NodeTypeID = 77 AND NodeNumber BETWEEN 700 AND 1900;
        INSERT INTO Node_General_Pool VALUES (1, 2, 77, 3000, 'X', NULL, NULL), (1, 2, 77, -1, 'X', NULL, NULL))");
    // A save that ended half-way, which the import goes over.
    store.Execute(
        "INSERT INTO Node_AUTO_Version (ConfigID, PartID, NodeNumber, VersionNo, Work, State, BegunAt,"
        " UserName, HostName, Program, ProcessID, ProcessStart, Content) VALUES (1, 2, 5, 1, 'save',"
        " 'failed', '', '', '', '', 1, '', '{\"node\":null}')");
    const std::string after = ExportOf(store);
    const std::string told = ImportInto(store, before, Import::OnlyTell);
    EXPECT_EQ(ExportOf(store), after);
    EXPECT_EQ(store.Value("SELECT COUNT(*) FROM Node_AUTO_Version"), "1");
    EXPECT_EQ(ImportInto(store, before), told);
    EXPECT_EQ(ExportOf(store), before);
    EXPECT_EQ(told, R"(AUTO 2/5 changed: label "Other" → "Order status"
AUTO 2/6 changed: keys 8-1 removed: MSG 240
AUTO 2/7 new
AUTO 2/39 gone
Node_General_Pool +1201 ~0 -2 untold 1103
Node_AUTO +1 ~1 -1
Detail_AUTO_Prompts +1 ~0 -0
Detail_AUTO_Action +0 ~1 -0
Node_MSG +0 ~1 -0
  changed ConfigID 1, PartID 1, NodeNumber 1, NodeTypeID 0: Password, Comment
)");
    EXPECT_EQ(
        store.Rows("SELECT NodeNumber, Work, State FROM Node_AUTO_Version ORDER BY NodeNumber, VersionNo"),
        (std::vector<std::string>{"5|save|left", "5|import|finished", "6|import|finished",
                                  "7|import|finished", "39|import|finished"}));
    DataBase dataBase;
    History(dataBase).PutBack({{1, 2}, 5}, 2, "restore");
    EXPECT_EQ(store.Value("SELECT NodeDescription FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 5"),
              "Other");
    // What others change while it compares, of what it had no need to change, becomes what the text holds.
    bool changed = false;
    static_cast<void>(ImportExchange(
        dataBase, store.Folder() / "in.json", Import::Carry, [](const auto&...) {},
        [&](std::uint64_t) {
            if (!std::exchange(changed, true)) {
                store.Execute("UPDATE Node_MSG SET Comment = 'x' WHERE PartID = 2 AND NodeNumber = 1");
            }
        }));
    EXPECT_EQ(ExportOf(store), before);
}

TEST(Exchange, LeavesOutOfItWhatIsNotInTheText) {
    const TestStore store;
    const std::string other = ExportOf(store, Partition{1, 2});
    ImportInto(store, R"({"format": "auto-node-exchange", "version": 1, "config": 1, "partition": 1,
                          "tables": {"node_msg": []}})");
    EXPECT_EQ(ExportOf(store, Partition{1, 2}), other);
    EXPECT_EQ(store.Value("SELECT COUNT(*) FROM Node_MSG WHERE PartID = 1"), "0");
    EXPECT_EQ(store.Value("SELECT MIN(PartID) FROM Node_General_Pool"), "1");
}

TEST(Exchange, RefusesAWrongTextAndAStoreAtWorkWhole) {
    const TestStore store;
    const std::string good = ExportOf(store);
    const auto name = [&](const std::string& row) {
        return Replaced(good, R"({"ID": 1, "English_Name": "CMD"})", row);
    };
    const std::pair<std::string, const char*> cases[] = {
        {"", "line 1: it ends before"},
        {good.substr(0, good.size() - 3), "it ends before"},
        {good.substr(0, good.size() / 2), "it ends before"},
        {good + "x", "behind its end"},
        {"[]", "line 1: nothing is told by a list here"},
        {"{}", "no tables"},
        {R"({"tables": {}})", "do not stand before"},
        {R"({"format": "auto-node-exchange", "tables": {}})", "do not stand before"},
        {R"({"format": "auto-node-exchange", "format": ""})", "\"format\" stands there twice"},
        {R"({"format": "auto-node-exchange", "version": 1, "tables": {}, "config": 1})",
         "means nothing here"},
        {R"({"format": "other", "version": 1, "tables": {}})", "no export"},
        {R"({"format": "auto-node-exchange", "version": 2, "tables": {}})", "version"},
        {R"({"format": "auto-node-exchange", "version": 1, "config": 1, "tables": {}})", "both"},
        {R"({"format": "auto-node-exchange", "version": 1, "config": 1, "partition": 40000, "tables": {}})",
         "no number of a partition"},
        {R"({"format": "auto-node-exchange", "version": 1, "config": 1, "partition": 2,
             "tables": {"SR_Node_Type_Names": []}})",
         "line 2: the table SR_Node_Type_Names is none of a partition's"},
        {R"({"format": "auto-node-exchange", "version": 1, "tables": {"Node_CMD": [], "node_cmd": []}})",
         "twice"},
        {R"({"format": "auto-node-exchange", "version": 1, "tables": {"Scheduler": []}})",
         "no table Scheduler"},
        {Replaced(ExportOf(store, Partition{1, 2}), R"("PartID": 2)", R"("PartID": 3)"), "another partition"},
        {Replaced(ExportOf(store, Partition{1, 2}), R"("ConfigID": 1)", R"("ConfigID": 7)"),
         "another partition"},
        {name(R"({"ID": 1})"), "line 4: the row has no English_Name"},
        {name(R"({"ID": 1, "English_Name": "CMD", "Remark": ""})"), "no column Remark"},
        {name(R"({"ID": 1, "ID": 1, "English_Name": "CMD"})"), "twice"},
        {name(R"({"ID": 0, "English_Name": "CMD"})"),
         "line 4: the rows of SR_Node_Type_Names stand in the order"},
        {name(R"({"ID": "x", "English_Name": "CMD"})"), "ID is a number, and stands without"},
        {name(R"({"ID": 1.5, "English_Name": "CMD"})"), "\"1.5\" is no whole number"},
        {name(R"({"ID": 2147483648, "English_Name": "CMD"})"), "no whole number of 32 bits"},
        {name(R"({"ID": 1, "English_Name": null})"), "English_Name is Null"},
        {name(R"({"ID": 1, "English_Name": 5})"), "is a text"},
        {name(R"({"ID": 1, "English_Name": true})"), "true and false"},
        {name(R"({"ID": 1, "English_Name": ["CMD"]})"), "list"},
        {name(R"({"ID": 1, "English_Name": {"bytes": "4"}})"), "two digits"},
        {name(R"({"ID": 1, "English_Name": {"bits": "41"}})"), "one member, bytes"},
        {name(R"({"ID": 1, "English_Name": {}})"), "one member, bytes"},
        {name(R"({"ID": 1, "English_Name": "C\u0000"})"), "NUL"},
        {name("5"), "no value stands here"},
        {name(R"({"ID": 1, "English_Name": "CMD"},,)"), "line 4: it is no JSON"},
    };
    // So that every one of them would change something.
    store.Execute("UPDATE SR_Node_Type_Names SET English_Name = 'before' WHERE ID = 0");
    const std::string before = ExportOf(store);
    for (const auto& [text, why] : cases) {
        const std::string failure = FailureOf([&, &text = text] { ImportInto(store, text); });
        EXPECT_NE(failure.find(why), std::string::npos) << '"' << failure << "\" does not tell " << why;
        EXPECT_NE(failure.find("in.json'"), std::string::npos) << failure;
    }
    EXPECT_EQ(ExportOf(store), before);
    std::string bytes(65U << 20U, 'x');
    std::istringstream text(bytes);
    LinesOfText lines(text);
    EXPECT_NE(FailureOf([&] { lines.sgetn(bytes.data(), 65U << 20U); }).find("longer than any row"),
              std::string::npos);
    if (TestStore::OnServer()) {
        const std::string latin = name(R"({"ID": 1, "English_Name": {"bytes": "e9"}})");
        EXPECT_NE(FailureOf([&] { ImportInto(store, latin); }).find("line 4: English_Name is no UTF-8"),
                  std::string::npos);
    }

    // Somebody is saving a node that would change.
    if (!TestStore::OnServer()) {
        Saver saver({{1, 2}, 5});
        const std::string label = R"("NodeNumber": 5, "NumberOfDigits": )";
        const auto import = [&](NodeSave& /*save*/) {
            for (const Import how : {Import::Carry, Import::OnlyTell}) {
                const std::string failure =
                    FailureOf([&] { ImportInto(store, Replaced(good, label, label + "1"), how); });
                EXPECT_NE(failure.find("is being saved"), std::string::npos) << failure;
            }
            throw std::logic_error("left");
        };
        EXPECT_THROW(static_cast<void>(saver.Save(saver.Load(), import)), std::logic_error);
        EXPECT_EQ(ExportOf(store), before);
    }
    EXPECT_NE(ImportInto(store, good).find("SR_Node_Type_Names +0 ~1 -0"), std::string::npos);
}

TEST(Exchange, ReplacesNothingButAnExport) {
    const TestStore store;
    DataBase dataBase;
    for (const char* content : {"a letter", "{\"json\": 1}", "SQLite format 3"}) {
        WriteFile(store.Folder() / "out.json", content);
        EXPECT_NE(FailureOf([&] { ExportOf(store); }).find("out.json"), std::string::npos);
        EXPECT_EQ(BytesOf(store.Folder() / "out.json"), content);
    }
    EXPECT_NE(FailureOf([&] { Export(dataBase, {}, store.File()); }), "");
    EXPECT_NE(FailureOf([&] { Export(dataBase, {}, store.Folder() / "no" / "folder.json"); }), "");
    // What import would refuse.
    const std::pair<const char*, const char*> refused[] = {
        {"UPDATE Node_AUTO SET RetryLimit = 3000000000 WHERE NodeNumber = 5", "Node_AUTO, ConfigID 1"},
        {"UPDATE Node_AUTO SET RetryLimit = 3, NodeDescription = 'a' || CHAR(0)", "holds a NUL"},
        {"UPDATE Node_AUTO SET NodeDescription = ''; DROP TABLE SR_Node_Type_Names; CREATE TABLE"
         " SR_Node_Type_Names (ID TEXT, English_Name TEXT); INSERT INTO SR_Node_Type_Names VALUES ('007', "
         "'X')",
         "ID is \"007\" and not 7"},
        {"UPDATE SR_Node_Type_Names SET ID = '7'", ""}};
    for (const auto& [sql, why] : refused) {
        if (!TestStore::OnServer()) {
            std::filesystem::remove(store.Folder() / "out.json");
            store.Execute(sql);
            EXPECT_NE(FailureOf([&] { ExportOf(store); }).find(why), std::string::npos) << why;
        }
    }
    // A store of another program's, whose rows cannot be told apart, is not written in part.
    store.Execute(R"(CREATE TABLE Copy AS SELECT * FROM Detail_AUTO_Prompts; DROP TABLE Detail_AUTO_Prompts;
                     INSERT INTO Copy SELECT * FROM Copy LIMIT 1; ALTER TABLE Copy RENAME TO Detail_AUTO_Prompts)");
    std::filesystem::remove(store.Folder() / "out.json");
    EXPECT_NE(
        FailureOf([&] { ExportOf(store); }).find("Two rows of Detail_AUTO_Prompts have the key ConfigID 1"),
        std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(store.Folder() / "out.json"));
}

} // namespace
} // namespace KAL_AUTO_Node
