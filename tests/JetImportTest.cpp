#include "exchange/JetImport.h"

#include "exchange/JetFrames.h"
#include "exchange/JetText.h"
#include "exchange/Tables.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace KAL_AUTO_Node {
namespace {

// The demo store's content, as a site's file may hold it.
constexpr const char* SiteFile = TEST_DATA "/NewDB.mdb";

// What came of bringing a file over into a new store.
struct Outcome {
    std::filesystem::path store;
    JetReport report;
    std::string failure;
};

Outcome BringOver(const std::filesystem::path& file, const std::filesystem::path& folder,
                  const JetReader& reader = {JET_READER}, Damage damage = Damage::Refuse) {
    Outcome outcome{folder / "store" / "NewDB.mdb", {}, {}};
    try {
        CreateStore(outcome.store, [&](DataBase& dataBase) {
            outcome.report = ImportJet(dataBase, reader, file, damage, [](const auto&...) {});
        });
    } catch (const RuntimeError& error) {
        outcome.failure = error.what();
        // Nothing of it is left.
        EXPECT_FALSE(std::filesystem::exists(outcome.store.parent_path())) << outcome.failure;
    }
    return outcome;
}

std::vector<std::string> RowsOf(const std::filesystem::path& store, const std::string& sql) {
    SQLite::Database database(store.string(), SQLite::OPEN_READWRITE);
    return TestStore::Rows(database, sql);
}

TEST(JetImport, BringsEveryValueOver) {
    const TestStore demo;
    const TemporaryFolder folder;
    {
        // What one that was killed has left would be taken for the new store's.
        DataBase open;
        static_cast<void>(open.Query(Command::Get_Node_Names, {}));
        demo.Execute(
            "UPDATE Node_CMD SET NodeNumber = -NodeNumber; UPDATE Node_CMD SET NodeNumber = -NodeNumber");
        std::filesystem::create_directory(folder.Path() / "store");
        std::filesystem::copy(demo.File().string() + "-wal", folder.Path() / "store" / "NewDB.mdb.new-wal");
    }
    const Outcome outcome = BringOver(SiteFile, folder.Path());
    ASSERT_EQ(outcome.failure, "");
    // Where the file holds another type than the demo store, or other values.
    demo.Execute(R"(
        UPDATE Node_MSG SET OnOff = CASE OnOff WHEN 'On' THEN -1 ELSE 0 END,
               DTMF = CASE DTMF WHEN 'Yes' THEN -1 ELSE 0 END,
               WarningTone = CASE WarningTone WHEN 'Yes' THEN -1 ELSE 0 END,
               MSGArchive = CASE MSGArchive WHEN 'Yes' THEN -1 ELSE 0 END;
        UPDATE Node_MSG SET Comment = NULL, Password = NULL WHERE NodeNumber = 4;
        UPDATE Node_VOX SET Beep = CASE Beep WHEN 'Yes' THEN -1 ELSE 0 END;
        UPDATE Node_PAAS SET Interrupt = CASE Interrupt WHEN 'Yes' THEN -1 ELSE 0 END;
        UPDATE Node_DTMF SET DTMFClear = CASE DTMFClear WHEN 'Yes' THEN -1 ELSE 0 END;
        UPDATE Node_DBN SET Confirm = CASE Confirm WHEN 'Yes' THEN -1 ELSE 0 END,
               PlayName = CASE PlayName WHEN 'Yes' THEN -1 ELSE 0 END;
        UPDATE Node_DATE SET StartDate = '03/07/09', StopDate = '03/07/09' WHERE StartDate IS NOT NULL;)");
    std::string memo;
    for (int i = 0; i < 300; ++i) {
        memo += "Zeile 1\r\näöü \"q\" 's' \\ 日本 ";
    }
    EXPECT_EQ(RowsOf(outcome.store, "SELECT DISTINCT Comment FROM Node_MSG WHERE NodeNumber = 2"),
              std::vector{memo});
    for (const char* sql : {"UPDATE Node_MSG SET Comment = '' WHERE NodeNumber = 2"}) {
        SQLite::Database(outcome.store.string(), SQLite::OPEN_READWRITE).exec(sql);
        demo.Execute(sql);
    }
    std::size_t rows = 0;
    for (const StoreTable& table : StoreTables()) {
        const auto brought = RowsOf(outcome.store, "SELECT * FROM " + table.name);
        EXPECT_EQ(brought, demo.Rows("SELECT * FROM " + table.name)) << table.name;
        const auto& told = outcome.report.tables.at(&table - StoreTables().data());
        EXPECT_EQ(told.stored, brought.size()) << table.name;
        EXPECT_EQ(told.taken, brought.size()) << table.name;
        rows += brought.size();
    }
    EXPECT_GT(rows, 800U);
    EXPECT_EQ(outcome.report.unknown, (std::vector<std::string>{"Node_AUTO.Remark", "Scheduler"}));
    EXPECT_TRUE(outcome.report.notTaken.empty());
}

TEST(JetImport, WritesDatesAndTextsInOneForm) {
    const std::pair<double, const char*> dates[] = {{46279, "09/14/26"},
                                                    {0, "00:00"},
                                                    {0.9993055555555556, "23:59"},
                                                    {1.0 / 3, "08:00"},
                                                    {46279.75, "09/14/26 18:00"},
                                                    {46279 + 1.0 / 86400, "09/14/26 00:00:01"},
                                                    {46279 + 0.25 / 86400, "09/14/26 00:00:00.250"},
                                                    {46279.9999999999, "09/15/26"},
                                                    {-1.25, "12/29/1899 06:00"},
                                                    {10959, "01/01/30"},
                                                    {10958, "12/31/1929"},
                                                    {47483, "12/31/29"},
                                                    {47484, "01/01/2030"},
                                                    {-657434, "01/01/0100"},
                                                    {2958465, "12/31/9999"}};
    for (const auto& [date, text] : dates) {
        EXPECT_EQ(JetDateText(date), text) << date;
    }
    for (const double date : {-657435.0, 2958466.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(JetDateText(date), std::nullopt) << date;
    }
    for (const auto& [written, text] :
         {std::pair{"12.5000", "12.5"}, {"-7.0000", "-7"}, {"0.0000", "0"}, {"100", "100"}}) {
        EXPECT_EQ(JetDecimalText(written), text);
    }
    using namespace std::string_view_literals;
    const std::pair<std::string_view, std::optional<std::string>> texts[] = {
        {"", ""},
        {"\xFF\xFE", ""},
        {"\xFF\xFE"
         "caf\xE9",
         "café"},
        {"\xFF\xFE"
         "a\0\xE5\x65\0b"sv,
         "a日b"},
        {"a\0\xE5\x65"sv, "a日"},
        {"\x3D\xD8\x00\xDE"sv, "😀"},
        {"\x3D\xD8"sv, std::nullopt},
        {"\x00\xDE\x3D\xD8"sv, std::nullopt},
        {"a\0b"sv, std::nullopt}};
    for (const auto& [bytes, text] : texts) {
        EXPECT_EQ(JetUnicodeText(bytes), text);
    }
}

// A file that its reader tells of in these words, as the reader only copies it.
class ToldFile {
  public:
    explicit ToldFile(const std::function<void(JetFrameWriter&)>& tell) {
        JetFrameWriter writer([this](std::string_view bytes) { stream_ += bytes; });
        tell(writer);
    }

    [[nodiscard]] const std::string& Stream() const { return stream_; }

    [[nodiscard]] Outcome BringOver(const TemporaryFolder& folder, Damage damage = Damage::Refuse) const {
        WriteFile(folder.Path() / "told", stream_);
        return KAL_AUTO_Node::BringOver(folder.Path() / "told", folder.Path(), {"/bin/cat"}, damage);
    }

  private:
    std::string stream_;
};

using Fields = std::vector<std::optional<std::string_view>>;

void TellRow(JetFrameWriter& writer, const Fields& fields) {
    std::vector<JetValue> row;
    for (const auto& field : fields) {
        const bool unreadable = field == "unreadable";
        row.push_back(!field ? JetValue{}
                             : JetValue{unreadable ? JetValue::Unreadable : JetValue::Text, *field});
    }
    writer.TakeRow(row);
}

void TellTable(JetFrameWriter& writer, const JetTable& table, const std::vector<Fields>& rows) {
    writer.TakeTable(table);
    for (const Fields& row : rows) {
        TellRow(writer, row);
    }
    writer.TakeEndOfTable(0);
}

const JetTable Prompts{
    "DETAIL_auto_prompts",
    7,
    {"partid", "CONFIGID", "SequenceNo", "NodeTypeID", "NodeNumber", "NodeMasterID", "NodeType"}};

TEST(JetImport, TakesOtherShapesAndTellsWhatItCannotTake) {
    const ToldFile file([](JetFrameWriter& writer) {
        TellTable(writer, Prompts,
                  {{"2", "1", "2", "0", "20", "5", "MSG"},
                   {"2", "1", "1", "0", "10", "5", "MSG"},
                   {"2", "1", "2", "0", "21", "5", "MSG"},
                   {"2", "1", "3", "0", "30", "5", "MSG"},
                   {"2", "1", "9", "0", "90", "5", "MSG"},
                   {"2", "1", "2", "0", "22", "5", "MSG"},
                   {"2", "1", "1", "0", "70000", "6", ""}});
        TellTable(writer,
                  {"Node_CMD", 5, {"ConfigID", "PartID", "NodeTypeID", "NodeNumber", "NodeDescription"}},
                  {{"1", "2", "1", " 007 ", "kept"},
                   {"1", "2", "1", "7", "again"},
                   {"1", "2", "1", "8.5", "no number"},
                   {"1", "2", std::nullopt, "9", "no type"},
                   {"1", "2", "1", "10", "unreadable"},
                   {"1", "2", "1", "3000000000", "too large"}});
        writer.TakeRemark("no cage");
        writer.End();
    });
    const TemporaryFolder folder;
    const Outcome outcome = file.BringOver(folder);
    ASSERT_EQ(outcome.failure, "");
    EXPECT_EQ(RowsOf(outcome.store,
                     "SELECT NodeMasterID, SequenceNo, NodeNumber, NodeType FROM Detail_AUTO_Prompts"),
              (std::vector<std::string>{"5|1|10|MSG", "5|2|20|MSG", "5|3|21|MSG", "5|4|22|MSG", "5|5|30|MSG",
                                        "5|9|90|MSG", "6|1|70000|"}));
    EXPECT_EQ(RowsOf(outcome.store, "SELECT NodeNumber, NodeType, NodeDescription FROM Node_CMD"),
              (std::vector<std::string>{"7|NULL|kept", "10|NULL|NULL"}));
    const auto& report = outcome.report;
    EXPECT_EQ(report.rowsNotTaken, 4U);
    EXPECT_EQ(report.valuesNotTaken, 1U);
    EXPECT_EQ(report.notTaken.front(),
              "Node_CMD, ConfigID 1, PartID 2, NodeNumber 7, NodeTypeID 1, the row: another "
              "one has its key");
    EXPECT_EQ(report.notTaken.size(), 5U);
    EXPECT_EQ(report.remarks.front(),
              "Detail_AUTO_Prompts: sequence numbers were doubled in 1 list; the rows stay in "
              "their order, numbered anew from there on");
    EXPECT_EQ(std::ranges::count(report.remarks, "no cage"), 1);
    EXPECT_EQ(std::ranges::count(report.remarks, "Node_CMD: the file counts fewer rows than it holds"), 1);
}

TEST(JetImport, RefusesADamagedFileAndLeavesNothing) {
    const auto part = [](const std::function<void(JetFrameWriter&)>& tell) {
        return ToldFile(tell).Stream();
    };
    const char* const form = "the reader's answer breaks its own form";
    const char* const cut = "the reader ended before the file was read; the file is damaged";
    const std::string table = part([](JetFrameWriter& writer) {
        writer.TakeTable(Prompts);
        TellRow(writer, {"2", "1", "2", "0", "20", "5", "MSG"});
        writer.TakeEndOfTable(0);
        writer.End();
    });
    const std::string none = part([](JetFrameWriter& writer) { writer.End(); });
    const std::string twice = table.substr(0, table.size() - 5) + table.substr(none.size() - 5);
    std::string length = table;
    length[none.size() - 5 + 4] = '\x7F';
    std::string state = table;
    state[table.find('R') + 5] = 3;
    std::vector<std::pair<std::string, const char*>> cases = {
        {table, "it is damaged: Detail_AUTO_Prompts should hold 7 rows, and 1 can be read"},
        {part([](JetFrameWriter& writer) {
             writer.TakeTable({"Node_CMD", 0, {"ConfigID"}});
             writer.TakeEndOfTable(2);
             writer.End();
         }),
         "it is damaged: Node_CMD should hold 0 rows, and 0 can be read, 2 cannot"},
        {table.substr(0, table.size() - 1), cut},
        {table.substr(0, none.size() + 3), cut},
        {table + "x", form},
        {twice, "it has the table Detail_AUTO_Prompts twice"},
        {length, form},
        {state, form},
        {none, "it holds none of this system's tables"},
        {"", cut},
        {"SQLite format 3 and so on", form},
        {part([](JetFrameWriter& writer) { writer.Fail("a \x1b[31mred\x1b[0m reason"); }),
         "a \\x1b[31mred\\x1b[0m reason"},
        {part([](JetFrameWriter& writer) {
             TellTable(writer, {"Node_CMD", 0, {}}, {}), writer.End();
         }),
         "it is damaged: the definition of Node_CMD cannot be read"},
    };
    for (std::size_t at = none.size() - 5, size = 0; at < table.size(); at += 5 + size) {
        size = static_cast<unsigned char>(table[at + 1]);
        std::string longer = table;
        ++longer[at + 1];
        cases.emplace_back(longer.insert(at + 5 + size, 1, '\0'), form);
    }
    const TemporaryFolder folder;
    const auto file = folder.Path() / "told";
    for (const auto& [stream, why] : cases) {
        WriteFile(file, stream);
        const std::string failure = BringOver(file, folder.Path(), {"/bin/cat"}).failure;
        EXPECT_EQ(failure, "Cannot bring over '" + file.string() + "': " + why);
    }
    WriteFile(file, table);
    EXPECT_EQ(BringOver(file, folder.Path(), {"/bin/cat"}, Damage::Accept).report.damage.size(), 1U);
    std::filesystem::remove_all(folder.Path() / "store");

    const auto reader = folder.Path() / "reader";
#ifdef __SANITIZE_ADDRESS__
    const std::string memory = "unlimited"; // its shadow takes any
#else
    const std::string memory = "524288";
#endif
    const std::tuple<std::string, std::uint64_t, const char*> scripts[] = {
        {"kill -SEGV $$", 3, "crashed over it"},
        {"kill -XCPU $$", 3, "came to no end"},
        {"kill -SYS $$", 3, "led to do what it may not"},
        {"exit 1", 3, "ended before"},
        {"exec 1>&-; sleep 60", 3, "ended"},
        {"exec sleep 60", 0, "came to no end"},
        {"[ $(ulimit -t) = 3 ] && [ $(ulimit -v) = " + memory + " ] && kill -SEGV $$", 3, "crashed over it"}};
    for (const auto& [script, seconds, why] : scripts) {
        WriteFile(reader, "#!/bin/sh\n" + script + '\n');
        std::filesystem::permissions(reader, std::filesystem::perms::owner_all);
        const std::string failure = BringOver(file, folder.Path(), {reader, seconds}).failure;
        EXPECT_NE(failure.find(why), std::string::npos) << failure;
    }
    EXPECT_NE(BringOver(file, folder.Path(), {"/nowhere"}).failure.find("cannot be started"),
              std::string::npos);

    // One row more in the list of tables than can be read; a row that would lie behind its page's end.
    for (const auto& [at, more, why] :
         {std::tuple{2 * 4096 + 16, 1, "its list of tables is damaged"},
          {26 * 4096 + 14 + 2 * 17 + 1, 16, "hold 18 rows, and 17 can be read, 1 cannot"}}) {
        std::string bytes = BytesOf(SiteFile);
        bytes.at(at) = static_cast<char>(bytes.at(at) + more);
        WriteFile(file, bytes);
        const std::string failure = BringOver(file, folder.Path()).failure;
        EXPECT_NE(failure.find(why), std::string::npos) << failure;
    }

    // The library that reads such files fails on damaged ones, in whatever way.
    for (std::size_t copy = 1; copy <= static_cast<std::size_t>(Rounds(12)); ++copy) {
        std::string bytes = BytesOf(SiteFile);
        bytes.resize(copy % 4 == 0 ? bytes.size() * copy / 41 : bytes.size());
        for (std::size_t at = 61 * copy; at < bytes.size(); at += 99'991 / copy) {
            bytes[at] = static_cast<char>(bytes[at] + 85);
        }
        WriteFile(file, bytes);
        const Outcome outcome = BringOver(file, folder.Path());
        EXPECT_TRUE(!outcome.failure.empty() ||
                    RowsOf(outcome.store, "PRAGMA integrity_check").front() == "ok");
        std::filesystem::remove_all(outcome.store.parent_path());
    }
}

} // namespace
} // namespace KAL_AUTO_Node
