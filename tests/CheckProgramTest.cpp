#include "RunProgram.h"
#include "testing/TestStore.h"

#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

namespace KAL_AUTO_Node {
namespace {

std::string LineOf(const std::string& text, int number) {
    std::istringstream lines(text);
    std::string line;
    while (number-- > 0 && std::getline(lines, line)) {
    }
    return line;
}

TEST(CheckProgram, FindsInATextWhatTheStoreHasWithItsLines) {
    const TestStore store;
    const std::string file = (store.Folder() / "part, 1.json").string();
    const QString name = QString::fromStdString(file);
    Program(0, {"export", "1", "2", name});
    // A row of another type's list, a row of an AUTO node's, and nodes that are only in the register.
    std::string text = BytesOf(file);
    text = std::regex_replace(text,
                              std::regex("(\"SequenceNo\": 1, \"NodeTypeID\": 0, \"NodeNumber\": )9(, "
                                         "\"NodeMasterID\": 1, \"NodeType\": \"MSG\")"),
                              "$011199$2", std::regex_constants::format_first_only);
    std::ofstream(file) << text;
    const std::string keys = Program(1, {"check", "--text", name, "--keys"}).output;
    std::ofstream(store.Folder() / "accepted") << Program(1, {"check", "1", "2", "--keys"}).output;
    const QString accepted = QString::fromStdString((store.Folder() / "accepted").string());
    const auto found =
        nlohmann::json::parse(Program(1, {"check", "--text", name, "--accept", accepted, "--json"}).output);
    ASSERT_EQ(found.size(), 1U) << found;
    EXPECT_EQ(found[0]["subject"], "MSG 1199");
    ExpectTold(LineOf(text, found[0]["line"]), "\"NodeNumber\": 1199");

    std::istringstream lines(Program(1, {"check", "--text", name, "--format", "lines"}).output);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        std::smatch parts;
        ASSERT_TRUE(std::regex_match(
            line, parts, std::regex(".*json:([0-9]+): .*: [A-Z]+ ([0-9]+)(, (action|row) ([0-9]+))?.*")))
            << line;
        const std::string row = LineOf(text, std::stoi(parts[1]));
        ExpectTold(row, (parts[5].matched ? "\"NodeMasterID\": " : "\": ") + parts[2].str());
        ExpectTold(row, parts[5].matched ? "\"SequenceNo\": " + parts[5].str() + ',' : "");
    }
    EXPECT_EQ(count, std::ranges::count(keys, '\n'));

    ExpectTold(Program(1, {"check", "--text", name, "--accept", accepted, "--format", "github"}).output,
               "::error file=" + std::regex_replace(file, std::regex(","), "%2C") + ",line=");
    const auto sarif =
        nlohmann::json::parse(Program(1, {"check", "--text", name, "--format", "sarif"}).output);
    EXPECT_EQ(sarif["version"], "2.1.0");
    for (const auto& result : sarif["runs"][0]["results"]) {
        const auto& rule =
            sarif["runs"][0]["tool"]["driver"]["rules"][result["ruleIndex"].get<std::size_t>()];
        EXPECT_EQ(rule["id"], result["ruleId"]);
        const auto& place = result["locations"][0]["physicalLocation"];
        ExpectTold(place["artifactLocation"]["uri"].get<std::string>(), "part%2C%201.json");
        EXPECT_GT(place["region"]["startLine"], 1);
    }
    store.Execute("UPDATE Node_AUTO SET NodeType = '<A>' WHERE PartID = 2 AND NodeNumber = 1");
    const std::string junit = Program(1, {"check", "--format", "junit"}).output;
    ExpectTold(junit,
               "<testsuite name=\"configuration 1, partition 1\" tests=\"1\" failures=\"0\" errors=\"0\">");
    ExpectTold(junit, "<failure type=\"type-name\" message=\"AUTO 1, record: '&lt;A&gt;' for AUTO. ");
    ExpectTold(Program(1, {"check", "--text", accepted}).errors, "line 1");
}

TEST(CheckProgram, LooksForWhatIsAskedForAndKeepsTheAcceptedTrue) {
    const TestStore store;
    const std::string file = (store.Folder() / "accepted").string();
    const QString accepted = QString::fromStdString(file);
    const std::string all = Program(1, {"check", "--keys"}).output;
    const std::string stale = "missing-node 1 2 AUTO 6 MSG 77";
    std::ofstream(file) << "# ours\n" + all + stale + "\nmissing-node 1 1 AUTO 1 MSG 78\n";
    ExpectTold(0, "check 1 2 --accept " + accepted, "not found any more: " + stale + '\n');
    Program(0, {"check", "1", "2", "--accept", accepted, "--prune", "--ignore", "missing-node"});
    ExpectTold(BytesOf(file), stale);
    Program(0, {"check", "1", "2", "--accept", accepted, "--prune"});
    EXPECT_EQ(BytesOf(file), "# ours\n" + all + "missing-node 1 1 AUTO 1 MSG 78\n");

    EXPECT_EQ(
        Program(3, {"check", "--select", "no-prompts,unreferenced", "--ignore", "unreferenced", "--keys"})
            .output.find("unreferenced"),
        std::string::npos);
    Program(2, {"check", "--select", "no-prompts,bogus"});
    ExpectTold(0, "check --explain no-prompts", "Add a prompt.");
    const std::string nodes = store.Value("SELECT COUNT(*) FROM Node_General_Pool");
    const std::string would = Program(1, {"check", "--fix", "missing", "--dry-run"}).output;
    ExpectTold(would, "MSG 241 would be created.\n");
    ExpectTold(would, "HOLD 4: These nodes could not be created: there is no template");
    EXPECT_EQ(store.Value("SELECT COUNT(*) FROM Node_General_Pool"), nodes);
}

} // namespace
} // namespace KAL_AUTO_Node
