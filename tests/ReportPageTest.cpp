#include "nodes/FindNodes.h"
#include "nodes/Overview.h"
#include "platform/FoldCase.h"
#include "platform/NewFile.h"
#include "report/Report.h"
#include "store/DataBase.h"
#include "testing/Browser.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace KAL_AUTO_Node {
namespace {

// A page of a partition in which texts would be markup, script and much else if they could.
class ReportPage : public testing::Test {
  protected:
    ReportPage() {
        store_.Execute(R"(
            UPDATE Node_AUTO SET NodeDescription = '</style><script>document.title = ''taken''</script> " &amp; ]]>'
             WHERE PartID = 2 AND NodeNumber = 8;
            UPDATE Node_AUTO SET NodeDescription = 'a' || char(0) || char(8238) || 'b' WHERE PartID = 2 AND NodeNumber = 9;
            UPDATE Node_AUTO SET NodeDescription = replace(hex(zeroblob(500000)), '0', 'W')
             WHERE PartID = 2 AND NodeNumber = 12;
            UPDATE Node_AUTO SET NodeDescription = 'القائمة الرئيسية' WHERE PartID = 2 AND NodeNumber = 1;
            UPDATE Node_MSG SET VexoFilename = '"><img src=http://example.invalid/x onerror=alert(1)>';
            UPDATE Detail_AUTO_Action SET DTMFRangeLow = '<i>', DTMFRangeHigh = '&lt;' WHERE NodeMasterID = 8;
            UPDATE Node_General_Pool SET NodeDescription = '<!-- <script>' WHERE NodeTypeID = 1;
            UPDATE SR_Node_Type_Names SET English_Name = '<script> x' WHERE ID = 12;)");
        DataBase dataBase;
        Output output(file_);
        static_cast<void>(WriteReport(
            ReadReportData(dataBase, {1, 2}), {"<b>", "2026-11-25 12:00"}, nullptr,
            [&](std::string_view part) { output.Append(part); }, [](const std::function<std::string()>&) {}));
        output.Finish();
        browser_.Open("file://" + file_);
    }

    TestStore store_;
    std::string file_ = (store_.Folder() / "page.html").string();
    Browser browser_;
};

TEST_F(ReportPage, NeedsNothingElseTakesTextsForTextsAndIsFoundInHeardAndPrinted) {
    EXPECT_EQ(browser_.Value("document.title"),
              "Configuration 1, partition 2: the call flow, 2026-11-25 12:00");
    EXPECT_EQ(
        browser_.Value("document.scripts.length * 10 + document.querySelectorAll('style, img, i i').length"),
        11);
    for (const auto& [node, label] :
         {std::pair("AUTO-8", "</style><script>document.title = 'taken'</script> \" &amp; ]]>"),
          {"AUTO-9", "a\\x00\\u202eb"},
          {"AUTO-1", "القائمة الرئيسية"},
          {"CMD-2", "<!-- <script>"}}) {
        EXPECT_EQ(browser_.Value("document.querySelector('#" + std::string(node) + " .l').textContent"),
                  label);
    }
    EXPECT_EQ(browser_.Value("document.querySelector('#AUTO-12 .whole').textContent.slice(-20)"),
              "WWW… (1000000 bytes)");
    EXPECT_LE(browser_.Value("document.documentElement.scrollWidth"), browser_.Value("innerWidth"));
    // Each link leads to where it says. A browser follows no more than two hundred in a row.
    EXPECT_EQ(browser_.Value(R"((() => {
        const ids = Array.from(document.querySelectorAll('[id]'), element => element.id);
        const wrong = ids.filter((id, at) => ids.indexOf(id) !== at);
        const links = new Map(Array.from(document.querySelectorAll('a'), link => [link.getAttribute('href'), link]));
        let followed = 0;
        for (const [href, link] of links) {
            const target = document.getElementById(href.slice(1));
            if (target && ++followed <= 180) {
                link.dispatchEvent(new MouseEvent('click', {bubbles: true, cancelable: true}));
            }
            const top = target ? target.getBoundingClientRect().top : -1;
            if (!target || (followed <= 180 && (location.hash !== href || top < -1 || top > innerHeight))) {
                wrong.push(href + ' at ' + top);
            }
        }
        return [followed > 150, wrong];
    })())"),
              Browser::Json({true, Browser::Json::array()}));
    browser_.Value("document.querySelector('nav a[href=\"#menus\"]').click()");
    browser_.Value("document.querySelector('nav a[href=\"#others\"]').click()");
    EXPECT_EQ(
        browser_.Value("new Promise(done => { addEventListener('hashchange', () => done(location.hash)); "
                       "history.back(); })"),
        "#menus");
    const auto requests = browser_.Events("Network.requestWillBeSent");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0]["request"]["url"], "file://" + file_);
    for (const char* told : {"Log.entryAdded", "Runtime.consoleAPICalled", "Runtime.exceptionThrown"}) {
        EXPECT_TRUE(browser_.Events(told).empty()) << Browser::Json(browser_.Events(told));
    }

    browser_.Value("document.getElementById('sought').focus()");
    browser_.Type("sales 2");
    EXPECT_EQ(browser_.Value(
                  "document.getElementById('found').innerText + document.getElementById('told').innerText"),
              "XFER 2 Sales\nMSG 21 Sales menu2 nodes");
    browser_.Press("Enter");
    EXPECT_EQ(browser_.Value("location.hash + document.getElementById('found').hidden"), "#XFER-2true");
    browser_.Value("document.getElementById('sought').focus()");
    browser_.Type("Zurich");
    EXPECT_EQ(browser_.Value("document.getElementById('told').innerText"), "0 nodes");
    browser_.Press("Escape");
    browser_.Type("wholesale");
    EXPECT_EQ(browser_.Value("document.getElementById('told').innerText"), "3 nodes");
    browser_.Press("ArrowDown");
    EXPECT_EQ(browser_.Value("document.activeElement.closest('#found') !== null"), true);
    browser_.Press("Escape");
    EXPECT_EQ(browser_.Value("document.activeElement.id + document.getElementById('sought').value"),
              "sought");

    // It finds what the program's own search does.
    DataBase dataBase;
    const TypeNames names(dataBase);
    for (const char* text : {"24", "-2", "2-", "AUTO 1", "cmd", "ext dir", "m s g", "Xfer SALES"}) {
        std::vector<std::string> found;
        ReadRegister(dataBase, {1, 2}, [&](const NodeKey& node, std::string_view, std::string_view label) {
            if (NodeWords(text).Fit(FoldCase(label), FoldCase(names.Name(node.typeID)), node.number, true)) {
                found.push_back(names.Text(node));
            }
        });
        std::ranges::sort(found);
        EXPECT_EQ(browser_.Value("sought.value = " + Browser::Json(text).dump() +
                                 "; sought.dispatchEvent(new Event('input')); Array.from("
                                 "found.querySelectorAll('a'), link => link.firstChild.data).sort()"),
                  found)
            << text;
    }

    // As those who hear the page walk it.
    std::vector<std::string> heard;
    const Browser::Json tree = browser_.Do("Accessibility.getFullAXTree");
    for (const auto& node : tree["nodes"]) {
        if (!node.value("ignored", false)) {
            heard.push_back(node["role"].value("value", "") + ": " +
                            node.value("name", Browser::Json::object()).value("value", ""));
        }
    }
    for (const char* said :
         {"main: ", "navigation: Parts", "search: ", "searchbox: Find a node", "heading: Menus",
          "region: AUTO 4 Extension directory", "heading: AUTO 4 Extension directory",
          "table: What each key does", "rowheader: 601", "columnheader: leads to", "link: MSG 60",
          "group: The whole flow"}) {
        EXPECT_TRUE(std::ranges::find(heard, said) != heard.end()) << said;
    }
    EXPECT_TRUE(std::ranges::find(heard, "link: ") == heard.end()) << "a link without a name";

    const auto background = [&] { return browser_.Value("getComputedStyle(document.body).backgroundColor"); };
    const auto prefer = [&](const char* media, const char* scheme) {
        browser_.Do(
            "Emulation.setEmulatedMedia",
            {{"media", media}, {"features", {{{"name", "prefers-color-scheme"}, {"value", scheme}}}}});
    };
    prefer("screen", "dark");
    EXPECT_EQ(background(), "rgb(21, 25, 30)");
    prefer("print", "dark");
    EXPECT_EQ(background(), "rgb(255, 255, 255)");
    EXPECT_EQ(browser_.Value("getComputedStyle(document.querySelector('header')).display + "
                             "getComputedStyle(document.querySelector('main a')).color"),
              "nonergb(0, 0, 0)");
}

} // namespace
} // namespace KAL_AUTO_Node
