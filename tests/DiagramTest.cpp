#include "diagram/DotText.h"
#include "diagram/Graphviz.h"
#include "diagram/Sections.h"
#include "nodes/NodeTypes.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sys/syscall.h>
#include <unistd.h>

namespace KAL_AUTO_Node {
namespace {

using std::chrono::seconds;

Reference Auto(int number) { return {AutoType, "AUTO", number, {}}; }

Action By(const std::string& digit, Reference target) { return {0, std::move(target), digit, digit}; }

AutoNode Menu(std::string label) {
    AutoNode node;
    node.type = "AUTO";
    node.label = std::move(label);
    node.branches.fill({NumberlessExceptionType, "NONE", 0, {}});
    return node;
}

std::set<int> All(const CallFlow& flow) {
    std::set<int> numbers;
    for (const auto& [number, node] : flow.nodes) {
        numbers.insert(number);
    }
    return numbers;
}

// Each leads to five more, and back to the first.
CallFlow Tree(int count) {
    CallFlow flow;
    for (int number = 1; number <= count; ++number) {
        AutoNode& node = flow.nodes[number] = Menu("Menu");
        for (int next = number * 5 - 3; next <= std::min(count, number * 5 + 1); ++next) {
            node.actions.push_back(By(std::to_string(next), Auto(next)));
        }
        node.branches[3] = Auto(1);
    }
    return flow;
}

TEST(Diagram, IsCutIntoSectionsThatCanBeTakenIn) {
    const CallFlow flow = Tree(500);
    const Outline outline(flow, All(flow), 0);
    std::set<int> numbers;
    for (const Section& section : outline.Sections()) {
        EXPECT_LE(section.nodes.size(), 30U);
        EXPECT_EQ(section.first, section.nodes.front());
        for (const auto& [type, number] : section.nodes) {
            EXPECT_TRUE(numbers.insert(number).second) << number << " is in two sections";
        }
    }
    EXPECT_EQ(numbers.size(), 500U);
    EXPECT_LE(outline.Sections().size(), 40U);
    for (const auto& [first, nodes] : AutoNodesBySection(flow, All(flow))) {
        EXPECT_TRUE(nodes.contains(first));
        std::erase_if(numbers, [&, &nodes = nodes](int number) { return nodes.contains(number); });
    }
    EXPECT_TRUE(numbers.empty());
    EXPECT_TRUE(outline.IsLine({AutoType, 100}, {AutoType, 500}));
    EXPECT_FALSE(outline.IsLine({AutoType, 1}, {AutoType, 500}));
    const CallFlow small = Tree(20);
    const Outline whole(small, All(small), 0);
    EXPECT_EQ(whole.Sections().size(), 1U);
    EXPECT_TRUE(whole.IsLine({AutoType, 1}, {AutoType, 2}));
    EXPECT_FALSE(whole.IsLine({AutoType, 2}, {AutoType, 1})) << "everything leads there";
    for (const int count : {60, 61}) {
        const CallFlow large = Tree(count);
        EXPECT_EQ(DotText(large, All(large), {}).find("retry limit") != std::string::npos, count == 60);
    }
}

TEST(Diagram, SurroundsANodeByStepsOnwardsAndBack) {
    CallFlow flow = Tree(200);
    EXPECT_EQ(Surroundings(flow, 7, 0), std::set{7});
    EXPECT_EQ(Surroundings(flow, 7, 1), (std::set{1, 2, 7, 32, 33, 34, 35, 36}));
    // Over nodes of other types it is one step.
    const Reference command = {1, "CMD", 1, {}};
    const Reference time = {2, "TIME", 1, {}};
    flow.nodes[7].actions.push_back(By("9", command));
    flow.registered = {{command.Key(), {"CMD", "Closed"}}, {time.Key(), {"TIME", "Open"}}};
    flow.others[command.Key()] = {{time, "TIME 1", false, {"row 2"}}};
    flow.others[time.Key()] = {{Auto(201), "AUTO 201", false, {"row 1"}},
                               {Auto(100), "AUTO 100", false, {"row 2"}}};
    EXPECT_TRUE(Surroundings(flow, 7, 1).contains(100));
    EXPECT_EQ(Surroundings(flow, 100, 1), (std::set{1, 7, 20, 100}));
    // A call comes in there.
    const Reference date = {3, "DATE", 1, {}};
    flow.registered[date.Key()] = {"DATE", "Holidays"};
    flow.others[date.Key()] = {{Auto(7), "AUTO 7", false, {"row 4"}}};
    const std::string text = DotText(flow, {7, 1}, 7);
    for (const char* shown :
         {"auto7 -> way", "label=<row 2>", "type1_1 -> way", "-> type2_1 ", "row 2 → AUTO 100 Menu",
          "✗ AUTO 201 is missing", "DATE 1 Holidays", "row 4 → AUTO 7 Menu"}) {
        EXPECT_NE(text.find(shown), std::string::npos) << shown << " in " << text;
    }
}

TEST(Diagram, ShowsTextsOfTheStoreAsTexts) {
    CallFlow flow;
    int number = -1; // such numbers are in stores
    for (const std::string& label :
         {std::string("</TD><BR/> & \"quotes\" \\N \\ &eacute; >]; x -> y"),
          std::string("\x1b[31m \u202e \n"), std::string("\xff\xfe \uFFFE \uFFFF \xed\xa0\x80"),
          std::string(5'000'000, '<'), std::string(), std::string(" "), std::string(1'000'000, '\xff')}) {
        AutoNode& node = flow.nodes[number++] = Menu(label);
        node.prompts.push_back({1, {2, label, 1, {}}});
        node.actions = {By(label, {4, label, 1, {}}), By("1", Auto(-1)), By(label, Auto(1))};
        flow.remarks[number - 1] = {{true, label}, {false, label}};
    }
    const std::string text = DotText(flow, All(flow), 1);
    EXPECT_LT(text.size(), 100'000U);
    const auto [svg, warnings] = DrawGraph(text, "svg", seconds(20));
    EXPECT_EQ(warnings, "");
    for (const char* shown :
         {"AUTO &#45;1 &lt;/TD&gt;&lt;BR/&gt; &amp; &quot;quotes&quot; \\N \\ &amp;eacute; &gt;]; x "
          "&#45;&gt; y<",
          "\\x1b[31m \\u202e \\x0a", "\\xff\\xfe \\ufffe \\uffff \\xed\\xa0\\x80", "&lt;&lt;…"}) {
        EXPECT_NE(svg.find(shown), std::string::npos) << shown;
    }
}

TEST(Diagram, MergesWaysIntoOneLineAndMuchIntoOneStack) {
    CallFlow flow;
    AutoNode& node = flow.nodes[1] = Menu("Directory");
    for (int number = 1; number <= 60; ++number) {
        node.actions.push_back(By(std::to_string(600 + number), {4, "XFER", number, {}}));
        flow.registered[{4, number}] = {};
    }
    node.actions.push_back(By("099", {5, "HOLD", 1, {}}));
    node.actions.push_back(By("100", {5, "HOLD", 1, {}}));
    node.actions.push_back(By("0101", {5, "HOLD", 1, {}}));
    node.branches[0] = node.branches[2] = {5, "HOLD", 1, {}};
    node.prompts.push_back({1, {0, "MSG", 7, {}}});
    const std::string text = DotText(flow, {1}, std::nullopt);
    for (const char* shown : {"<601-660>", "and 54 more", "<099-100, 0101>", "<Timeout, Abort>",
                              "<B>✗ HOLD 1 is missing</B>>, shape=octagon"}) {
        EXPECT_NE(text.find(shown), std::string::npos) << shown << " in " << text;
    }
    // An exception's line would end at a stack that tells nothing of it.
    node.branches[1] = {4, "XFER", 30, {}};
    EXPECT_NE(DotText(flow, {1}, std::nullopt).find("label=<XFER 30>"), std::string::npos);
    EXPECT_EQ(text.find("label=<XFER 30>"), std::string::npos);
    // Neither what is only heard nor what leads nowhere is a way.
    EXPECT_EQ(text.find("NONE"), std::string::npos) << text;
    EXPECT_EQ(text.find("MSG 7"), text.rfind("MSG 7")) << text;
}

TEST(Diagram, CostsAMessageWhereDotFails) {
    const EnvironmentVariable path("PATH");
    const TemporaryFolder folder;
    const auto fail = [&](const std::string& script, const std::string& told, const char* format = "svg") {
        const auto program = folder.Path() / "dot";
        std::ofstream(program) << "#!/bin/sh\n" << script;
        std::filesystem::permissions(program, std::filesystem::perms(0755));
        try {
            static_cast<void>(DrawGraph("digraph { a }", format, std::chrono::milliseconds(200)));
            ADD_FAILURE() << script;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find(told), std::string::npos) << error.what();
        }
    };
    path.Set(folder.Path().string() + ":/usr/bin:/bin");
    fail("exec sleep 100", "longer than 1 second");
    fail("echo $* $(ulimit -t) >&2", "status 0: -Tsvg 2");
    fail("kill -SEGV $$", "crashed: Segmentation fault");
    fail("echo 'no \033 go' >&2; exit 3", "status 3: no \\x1b go");
    fail("", "status 0");
    fail("echo $* >&2", "status 0: -Tpng -Gsize=72,72", "png");
    fail("echo picture; exit 1", "status 1");
    const auto made = folder.Path() / "made";
    fail("grep NoNewPrivs /proc/self/status >&2; echo any >'" + made.string() + "'; exit 5",
         "status 5: NoNewPrivs:\\x091");
    constexpr int askVersion = 1;
    EXPECT_EQ(std::filesystem::exists(made),
              syscall(SYS_landlock_create_ruleset, nullptr, 0, askVersion) < 1);
    path.Set(folder.Path().string() + "/none");
    EXPECT_THROW(static_cast<void>(DrawGraph("digraph { a }", "svg", seconds(1))), std::runtime_error);
}

} // namespace
} // namespace KAL_AUTO_Node
