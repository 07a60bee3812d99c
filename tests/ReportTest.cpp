#include "report/Report.h"

#include "history/History.h"
#include "nodes/AutoNodeReader.h"
#include "platform/NewFile.h"
#include "store/DataBase.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

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
    std::ostringstream example;
    example << std::ifstream(EXAMPLE).rdbuf();
    const Page page = Write(ReadReportData(dataBase, Demo));
    EXPECT_EQ(page.outcome.menus, 17U);
    EXPECT_TRUE(page.outcome.warnings.empty());
    EXPECT_TRUE(WithoutDrawing(page.text) == WithoutDrawing(example.str()))
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

} // namespace
} // namespace KAL_AUTO_Node
