#include "exchange/Merge.h"

#include "exchange/ExchangeReader.h"
#include "exchange/ExchangeText.h"
#include "platform/RuntimeError.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <random>
#include <set>
#include <unistd.h>

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
    Merging() { std::filesystem::create_directories(folder_); }

    ~Merging() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path File(const std::string& name, const std::string& text) {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return folder_ / name;
    }

    MergeReport Merge(const std::string& base, const std::string& ours, const std::string& theirs) {
        return MergeExports(File("base", base), File("ours", ours), File("theirs", theirs), merged_);
    }

    std::string FailureOf(const std::string& base, const std::string& ours, const std::string& theirs) {
        try {
            static_cast<void>(Merge(base, ours, theirs));
        } catch (const RuntimeError& error) {
            return error.what();
        }
        return "";
    }

    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("kal-merge-" + std::to_string(getpid()));
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
    const auto store = [](const std::string& label, const std::string& pound) {
        return ExportOf({{1,
                          {{"label", label},
                           {"day", "11/25/26"},
                           {"retry limit", "3"},
                           {"branch #", pound},
                           {"prompts", "1"},
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
    const std::string other = Exchange::Head(Partition{1, 2}) + Exchange::End;
    EXPECT_NE(FailureOf(other, store("a", "1"), store("a", "1")).find("different partitions"),
              std::string::npos);
    EXPECT_NE(FailureOf("", store("a", "1"), "").find("theirs': line 1: it ends before"), std::string::npos);
}

} // namespace
} // namespace KAL_AUTO_Node
