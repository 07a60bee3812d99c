#include "exchange/Merge.h"

#include "exchange/ExchangeReader.h"
#include "exchange/ExchangeText.h"
#include "nodes/Merging.h"
#include "nodes/NodeTypes.h"
#include "platform/RuntimeError.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

namespace KAL_AUTO_Node {
namespace {

// A node as its parts, by name, each of which one person changes as a whole: "label", "retry limit", "branch
// #", and the lists, a digit a row.
using Parts = std::map<std::string, std::string>;
using Nodes = std::map<int, Parts>;

std::string RowText(const std::string& table, const std::map<std::string, std::string>& given) {
    const StoreTable* found = FindTable(table);
    StoreRow row;
    for (const StoreColumn& column : found->columns) {
        const auto value = given.find(column.name);
        row.push_back(value != given.end() ? value->second : column.number ? "1" : "x");
    }
    std::string text;
    Exchange::AppendRow(text, *found, row);
    return text;
}

std::string ExportOf(const Nodes& nodes) {
    std::string text = Exchange::Head(Partition{1, 1});
    const char* before = "";
    for (const std::string table :
         {"Node_General_Pool", "Node_AUTO", "Detail_AUTO_Prompts", "Detail_AUTO_Action"}) {
        std::string rows;
        const auto add = [&](const std::string& row) { rows += (rows.empty() ? "\n" : ",\n") + row; };
        for (const auto& [number, parts] : nodes) {
            const std::string key = std::to_string(number);
            if (table == "Node_General_Pool") {
                add(RowText(table, {{"NodeTypeID", "9"},
                                    {"NodeNumber", key},
                                    {"NodeType", "AUTO"},
                                    {"NodeDescription", parts.at("label")},
                                    {"DateModified", parts.at("day")}}));
            } else if (table == "Node_AUTO") {
                const std::string& pound = parts.at("branch #");
                add(RowText(table, {{"NodeTypeID", "9"},
                                    {"NodeNumber", key},
                                    {"RetryLimit", parts.at("retry limit")},
                                    {"PoundNodeTypeID", pound},
                                    {"PoundNodeType", "T" + pound},
                                    {"PoundNodeNumber", pound}}));
            } else {
                int row = 0;
                for (const char target : parts.at(table.ends_with("Prompts") ? "prompts" : "actions")) {
                    add(RowText(table, {{"NodeMasterID", key},
                                        {"SequenceNo", std::to_string(++row)},
                                        {"NodeNumber", std::string(1, target)}}));
                }
            }
        }
        text += before + ('"' + table) + "\": [" + rows + "\n]";
        before = ",\n";
    }
    return text + Exchange::End;
}

// What a person makes of a merged text who keeps one side of every conflict.
std::string Keeping(const std::string& merged, char side) {
    std::string kept;
    char where = ' '; // the mark that stands before
    std::istringstream lines(merged);
    for (std::string line; std::getline(lines, line);) {
        if (std::string("<|=>").find(line[0]) != std::string::npos) {
            where = line[0] == '>' ? ' ' : line[0];
        } else if (where == ' ' || where == side) {
            kept += line + '\n';
        }
    }
    return kept;
}

class Merging : public testing::Test {
  protected:
    std::filesystem::path File(const std::string& name, const std::string& text) {
        WriteFile(folder_.Path() / name, text);
        return folder_.Path() / name;
    }

    MergeReport Merge(const std::string& base, const std::string& ours, const std::string& theirs) {
        return MergeExports(File("base", base), File("ours", ours), File("theirs", theirs), merged_);
    }

    std::string FailureOf(const std::string& base, const std::string& ours, const std::string& theirs) {
        return KAL_AUTO_Node::FailureOf([&] { static_cast<void>(Merge(base, ours, theirs)); });
    }

    TemporaryFolder folder_;
    std::string merged_;
};

TEST_F(Merging, LosesNoChangeAndFindsEveryConflict) {
    std::mt19937 random(20261125);
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    const auto text = [&] {
        return std::string(static_cast<std::size_t>(below(4)), static_cast<char>('0' + below(9)));
    };
    const std::vector<std::string> names = {"label", "retry limit", "branch #", "prompts", "actions"};
    const auto node = [&] {
        return Parts{{"label", text()},
                     {"day", "11/0" + std::to_string(1 + below(9)) + "/26"},
                     {"retry limit", std::to_string(below(6))},
                     {"branch #", std::to_string(below(9))},
                     {"prompts", text()},
                     {"actions", text()}};
    };
    int conflicts = 0;
    for (int round = 0; round < 300; ++round) {
        Nodes base;
        for (int number = 1; number < 6; ++number) {
            if (below(3) > 0) {
                base[number] = node();
            }
        }
        // What each of two does to what: to a part, or to a node as a whole.
        Nodes one = base;
        Nodes other = base;
        for (Nodes* side : {&one, &other}) {
            for (int edit = below(4); edit > 0; --edit) {
                const int number = 1 + below(5);
                if (!side->contains(number) || below(6) == 0) {
                    const bool removed = side->erase(number) > 0;
                    if (!removed) {
                        (*side)[number] = node();
                    }
                } else {
                    (*side)[number][names[static_cast<std::size_t>(below(5))]] = std::to_string(below(9));
                    (*side)[number]["day"] = "12/0" + std::to_string(1 + below(9)) + "/26";
                }
            }
        }
        Nodes ours = base;   // with the other's changes where they are not in the way
        Nodes theirs = base; // likewise
        std::set<std::string> expected;
        for (int number = 1; number < 6; ++number) {
            const auto of = [&](const Nodes& nodes) {
                const auto found = nodes.find(number);
                return found == nodes.end() ? std::optional<Parts>() : found->second;
            };
            const auto put = [&](Nodes& nodes, const std::optional<Parts>& parts) {
                nodes.erase(number);
                if (parts) {
                    nodes[number] = *parts;
                }
            };
            const auto was = of(base);
            const auto mine = of(one);
            const auto yours = of(other);
            if (mine == was || yours == was || mine == yours) {
                put(ours, mine == was ? yours : mine);
                put(theirs, mine == was ? yours : mine);
            } else if (!was || !mine || !yours) {
                put(ours, mine);
                put(theirs, yours);
                expected.insert("AUTO " + std::to_string(number));
            } else {
                put(ours, mine);
                put(theirs, mine);
                for (const auto& [name, value] : *yours) {
                    if (name == "day") {
                        ours[number][name] = std::max(mine->at(name), value);
                        theirs[number][name] = ours[number][name];
                    } else if (value != was->at(name) && mine->at(name) != was->at(name) &&
                               value != mine->at(name)) {
                        theirs[number][name] = value;
                        expected.insert("AUTO " + std::to_string(number) + ", " + name);
                    } else if (value != was->at(name)) {
                        ours[number][name] = value;
                        theirs[number][name] = value;
                    }
                }
            }
        }
        const MergeReport report = Merge(ExportOf(base), ExportOf(one), ExportOf(other));
        ASSERT_EQ(Keeping(merged_, '<'), ExportOf(ours)) << merged_;
        ASSERT_EQ(Keeping(merged_, '='), ExportOf(theirs)) << merged_;
        std::set<std::string> told;
        for (const MergeConflict& conflict : report.conflicts) {
            told.insert(conflict.what);
        }
        ASSERT_EQ(told, expected) << merged_;
        conflicts += static_cast<int>(expected.size());
    }
    EXPECT_GT(conflicts, 30);
}

TEST_F(Merging, TellsWhatIsForAPersonToDo) {
    const auto store = [](const std::string& label, const std::string& pound, const char* prompts = "1") {
        return ExportOf({{1,
                          {{"label", label},
                           {"day", "11/25/26"},
                           {"retry limit", "3"},
                           {"branch #", pound},
                           {"prompts", prompts},
                           {"actions", "12"}}}});
    };
    const MergeReport report = Merge(store("a", "1"), store("b", "2"), store("c", "3"));
    std::string told;
    for (const auto& [line, what, before, ours, theirs] : report.conflicts) {
        told += std::to_string(line) + ": " + what + ": " + before + ", " + ours + ", " + theirs + '\n';
    }
    EXPECT_EQ(told, "3: AUTO 1, label: \"a\", \"b\", \"c\"\n12: AUTO 1, branch #: T1 1, T2 2, T3 3\n");
    // Until then nothing takes it for an export.
    EXPECT_NE(FailureOf(store("a", "1"), merged_, store("a", "1"))
                  .find("ours': line 3: a merge has marked a conflict"),
              std::string::npos);
    EXPECT_EQ(Merge("", store("a", "1"), store("a", "1")).conflicts.size(), 0U);
    EXPECT_EQ(merged_, store("a", "1"));
    // Rows of a list go together where they are different ones, and are numbered anew.
    const auto prompts = [&](const char* rows) { return store("a", "1", rows); };
    EXPECT_EQ(Merge(prompts("12345"), prompts("2345"), prompts("123465")).conflicts.size(), 0U);
    EXPECT_EQ(merged_, prompts("23465"));
    EXPECT_EQ(Merge(prompts("123"), prompts(""), prompts("1234")).conflicts.size(), 0U);
    EXPECT_EQ(merged_, prompts("4"));
    // Both at the end, within a stretch that was replaced, beside a row that was moved.
    for (const auto& [before, mine, yours] :
         {std::array{"123", "1234", "1235"}, {"1234", "154", "12634"}, {"12", "21", "132"}}) {
        const auto conflicts = Merge(prompts(before), prompts(mine), prompts(yours)).conflicts;
        EXPECT_TRUE(conflicts.size() == 1 && conflicts[0].what == "AUTO 1, prompts") << before;
    }
    const std::string other = Exchange::Head(Partition{1, 2}) + Exchange::End;
    EXPECT_NE(FailureOf(other, store("a", "1"), store("a", "1")).find("different partitions"),
              std::string::npos);
    EXPECT_NE(FailureOf("", store("a", "1"), "").find("theirs': line 1: it ends before"), std::string::npos);
}

std::vector<ListedRow> Listed(const std::vector<int>& rows, ListKind kind) {
    std::vector<ListedRow> listed;
    for (const int row : rows) {
        listed.push_back(
            {std::to_string(kind == ListKind::Named ? row / 1000 : row), std::to_string(row), false});
    }
    return listed;
}

// Two change what one list was, beside one another or in each other's way. Of a row
// what stands before its last three digits is its name, where rows have any.
TEST(MergingLists, LosesNoEdit) {
    std::mt19937 random(26);
    const auto below = [&](std::size_t end) { return static_cast<int>(random() % end); };
    const auto place = [](const std::vector<int>& rows, int row) {
        return std::ranges::find(rows, row) - rows.begin();
    };
    const auto in = [](const std::vector<int>& rows, int row) { return std::ranges::count(rows, row) > 0; };
    int refused = 0;
    const int rounds = Rounds(400);
    for (int round = 0; round < rounds; ++round) {
        const ListKind kind = below(2) == 0 ? ListKind::Named : ListKind::Ordered;
        const bool apart = below(2) == 0;           // one before the fifth row, the other behind it
        const bool again = !apart && below(4) == 0; // rows come more than once
        int fresh = 0;
        const auto row = [&] { return 1001 * (again ? 1 + below(3) : ++fresh); };
        std::vector<int> before(9);
        std::ranges::generate(before, row);
        std::array<std::vector<int>, 2> sides = {before, before};
        for (std::vector<int>& rows : sides) {
            for (int edit = below(6); edit > 0; --edit) {
                const bool first = &rows == sides.data();
                const auto from = rows.begin() + (apart && !first ? place(rows, 5005) + 1 : 0);
                const auto end = apart && first ? rows.begin() + place(rows, 5005) : rows.end();
                const auto at = from + below(static_cast<std::size_t>(end - from) + 1);
                const int added = row();
                const int deed = at == end ? 0 : below(5);
                if (deed == 0) {
                    rows.insert(at, added);
                } else if (deed == 1) {
                    rows.erase(at);
                } else if (deed < 4) {
                    *at = deed == 2 ? added : *at / 1000 * 1000 + added % 1000; // or all but its name
                } else {
                    std::rotate(from, at, at + 1);
                }
            }
        }
        const auto merge = [&](const std::vector<int>& one, const std::vector<int>& other) {
            std::vector<int> rows;
            const auto merged =
                MergeLists(Listed(before, kind), Listed(one, kind), Listed(other, kind), kind);
            for (const auto& [ofOther, at] : merged.value_or(std::vector<MergedRow>())) {
                rows.push_back((ofOther ? other : one)[at]);
            }
            return merged ? std::optional(rows) : std::nullopt;
        };
        ASSERT_TRUE(merge(sides[0], before) == sides[0] && merge(before, sides[1]) == sides[1] &&
                    merge(sides[0], sides[0]) == sides[0]);
        const auto merged = merge(sides[0], sides[1]);
        ASSERT_EQ(merged.has_value(), merge(sides[1], sides[0]).has_value());
        if (!merged) {
            ASSERT_FALSE(apart);
            ++refused;
            continue;
        }
        const std::vector<int>& rows = *merged;
        SCOPED_TRACE(testing::PrintToString(before) + " became " + testing::PrintToString(sides) +
                     ", together " + testing::PrintToString(rows));
        for (const auto* list : {&before, &sides[0], &sides[1]}) {
            for (const int each : *list) {
                const auto more = [&](const std::vector<int>& than) {
                    return std::ranges::count(than, each) - std::ranges::count(before, each);
                };
                const auto one = more(sides[0]);
                const auto other = more(sides[1]);
                // What both have done alike is done once; of rows that are alike it is not known.
                const auto [least, most] = std::minmax({one, other, one + other});
                ASSERT_TRUE(again ? more(rows) >= least && more(rows) <= most
                                  : more(rows) == (one == other ? one : one + other))
                    << each;
            }
        }
        // Rows that stand otherwise with one than before stand so.
        for (std::size_t side = 0; !again && side < 2; ++side) {
            const std::vector<int>& own = sides.at(side);
            const auto turned = [&](const std::vector<int>& list, int a, int b) {
                return in(before, a) && in(before, b) && in(list, a) && in(list, b) &&
                       (place(before, a) < place(before, b)) != (place(list, a) < place(list, b));
            };
            const auto stays = [&](int a) {
                return std::ranges::none_of(before, [&](int b) { return turned(sides.at(1 - side), a, b); });
            };
            for (const int a : rows) {
                for (const int b : rows) {
                    const bool added = !in(before, a) || !in(before, b);
                    ASSERT_FALSE(
                        in(own, b) && place(own, a) < place(own, b) && place(rows, a) > place(rows, b) &&
                        (turned(own, a, b) || (added && kind == ListKind::Ordered && stays(a) && stays(b))))
                        << a << ", " << b;
                }
            }
        }
    }
    EXPECT_TRUE(refused > rounds / 10 && refused < rounds / 2) << refused;
    RecordProperty("refused", refused);
}

TEST(MergingNodes, SettlesEachPartByItself) {
    const std::array<void (*)(AutoNode&, int), 4> parts = {
        [](AutoNode& node, int value) { node.label = std::to_string(value); },
        [](AutoNode& node, int value) { node.settings.retryLimit = value; },
        [](AutoNode& node, int value) { node.settings.terminatingDigit = std::to_string(value); },
        [](AutoNode& node, int value) { node.branches[4].number = value; }};
    for (const auto one : parts) {
        for (const auto other : parts) {
            AutoNode mine;
            AutoNode yours;
            one(mine, 1);
            other(yours, 2);
            AutoNode both = mine;
            other(both, 2);
            EXPECT_EQ(MergeNodes({}, mine, yours), one == other ? std::nullopt : std::optional(both));
        }
    }
    AutoNode node;
    node.prompts = {{1, {0, "MSG", 1, {}}}};
    AutoNode more = node;
    more.prompts.push_back({2, {0, "MSG", 2, {}}});
    AutoNode none = node;
    none.prompts[0].target.typeID = NumberlessType;
    EXPECT_FALSE(MergeNodes(node, none, more)) << "a prompt beside the row that stands for none";
}

} // namespace
} // namespace KAL_AUTO_Node
