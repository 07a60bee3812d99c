#include "report/Report.h"

#include "history/History.h"
#include "nodes/AutoNodeReader.h"
#include "platform/NewFile.h"
#include "store/DataBase.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <array>

namespace KAL_AUTO_Node {
namespace {

constexpr Partition Demo{1, 2};

struct Page {
    std::string text;
    ReportOutcome outcome;
};

Page Write(const ReportData& data, const ReportChanges* changes = nullptr) {
    Page page;
    page.outcome = WriteReport(
        data, {"file '/var/lib/Brevank/Parlon+/Database/NewDB.mdb'", "2026-11-25 12:00"}, changes,
        [&](std::string_view part) { page.text += part; }, [](const std::function<std::string()>&) {});
    return page;
}

// What dot makes of a graph depends on the fonts that there are.
std::string WithoutDrawing(std::string page) {
    const std::size_t begin = page.find("<svg");
    return page.erase(begin, page.rfind("</svg>") - begin);
}

void ExpectTold(const std::string& page, std::initializer_list<const char*> parts) {
    for (const char* part : parts) {
        EXPECT_NE(page.find(part), std::string::npos) << part;
    }
}

TEST(Report, TellsThePartitionAlikeFromEveryEngine) {
    const TestStore store;
    DataBase dataBase;
    const Page page = Write(ReadReportData(dataBase, Demo));
    EXPECT_EQ(page.outcome.menus, 17U);
    EXPECT_TRUE(page.outcome.warnings.empty());
    EXPECT_TRUE(WithoutDrawing(page.text) == WithoutDrawing(BytesOf(EXAMPLE)))
        << "scripts/pictures writes it anew";
    EXPECT_LT(page.text.size(), 300U * 1024);
}

TEST(Report, IsWholeWithoutPicturesWhereDotIsMissing) {
    const TestStore store;
    const EnvironmentVariable path("PATH");
    path.Set(store.Folder().string());
    DataBase dataBase;
    const Page page = Write(ReadReportData(dataBase, Demo));
    ASSERT_EQ(page.outcome.warnings.size(), 1U);
    ExpectTold(page.text,
               {"There is no picture here: Graphviz's", "id=\"AUTO-40\"", "id=\"MSG-1\"", "</html>"});
}

TEST(Report, DrawsManyMenusBySection) {
    const TestStore store;
    store.Execute(
        "WITH RECURSIVE Numbers (Number) AS (VALUES (1) UNION ALL SELECT Number + 1 FROM Numbers WHERE "
        "Number < 70) INSERT INTO Node_AUTO SELECT 1, 3, 9, Number, 1, 'No', 5, 3, 3, 'MSG', 1, 'MSG', 1, "
        "'AUTO', Number + 1, 'AUTO', 'Menu！ ' || Number, 0, 0, 9, 814, 814, 'NONE', 0, 'NONE', 0 FROM "
        "Numbers");
    DataBase dataBase;
    const Page page = Write(ReadReportData(dataBase, {1, 3}));
    EXPECT_TRUE(page.outcome.warnings.empty());
    ExpectTold(page.text,
               {"70 menus in 3 sections", "id=\"section_1\"", "id=\"section_3\"", "Menu！ 70",
                "href=\"#section_3\"", "href=\"#AUTO-70\"",
                "aria-label=\"How the sections lead to one another\"", "aria-label=\"Section 3\"", "<body>"});
}

TEST(Report, TellsWhatChangedAndWhatIsNotKnownOfIt) {
    const TestStore store;
    DataBase dataBase;
    const ReportData before = ReadReportData(dataBase, Demo);
    History history(dataBase, "Prices are <gone>");
    history.Require();
    for (int i = 0; i < 2; ++i) {
        Transaction transaction(dataBase);
        history.Keep(std::array{NodePlace{Demo, 8}}, "save");
        transaction.Commit();
    }
    store.Execute("UPDATE Node_AUTO_Version SET BegunAt = '2001-01-01 00:00:00' WHERE VersionNo = 1");
    store.Execute("UPDATE Detail_AUTO_Action SET NodeNumber = 24 WHERE PartID = 2 AND NodeMasterID = 8 AND "
                  "SequenceNo = 2");
    store.Execute(
        "UPDATE Node_General_Pool SET NodeDescription = 'Adieu' WHERE PartID = 2 AND NodeTypeID = 0 "
        "AND NodeNumber = 1");
    store.Execute("DELETE FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 2");
    const ReportData now = ReadReportData(dataBase, Demo);
    using Words = std::vector<std::string>;

    const ReportChanges since = ChangesSince(dataBase, Demo, now, TimeStamp(1));
    ASSERT_EQ(since.nodes.size(), 1U);
    EXPECT_EQ(since.nodes.at(8).words, Words{"key 2 MSG 22 → MSG 24"});
    EXPECT_EQ(since.nodes.at(8).remark, "");
    ExpectTold(Write(now, &since).text, {"id=\"changes\"", "✎ Changed", "save: Prices are &lt;gone&gt;"});
    EXPECT_TRUE(ChangesSince(dataBase, Demo, now, TimeStamp(-1)).nodes.empty());
    store.Execute("DELETE FROM Node_AUTO_Version WHERE VersionNo = 1");
    ExpectTold(ChangesSince(dataBase, Demo, now, TimeStamp(1)).nodes.at(8).remark, {"are kept no longer"});
    store.Execute("UPDATE Node_AUTO_Version SET Content = 'spoilt'");
    ExpectTold(ChangesSince(dataBase, Demo, now, TimeStamp(1)).nodes.at(8).remark, {"cannot be read"});

    const ReportChanges against = ChangesAgainst(dataBase, Demo, before, "<it>");
    ASSERT_EQ(against.nodes.size(), 2U);
    EXPECT_EQ(against.nodes.at(2).words, Words{"the node is new"});
    EXPECT_EQ(against.nodes.at(8).words, Words{"key 2 MSG 24 → MSG 22"});
    EXPECT_EQ(against.others,
              (decltype(against.others){{{MessageType, 1}, "label \"Adieu\" → \"Goodbye\""}}));
    ExpectTold(Write(before, &against).text,
               {"What changed <bdi>against &lt;it&gt;</bdi>", "→ &quot;Goodbye&quot;"});
}

} // namespace
} // namespace KAL_AUTO_Node
