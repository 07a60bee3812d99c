#include "TestStore.h"
#include "calls/CallChanges.h"
#include "calls/Expectations.h"
#include "calls/Paths.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <set>

namespace KAL_AUTO_Node {
namespace {

// Small menus of which much is unclear, and what callers do there.
class Chance {
  public:
    int UpTo(int last) { return std::uniform_int_distribution<>(0, last)(random_); }

    std::string Digits(int most) {
        return SequenceText(1 + UpTo(most - 1), UpTo(9)).substr(0, static_cast<std::size_t>(most));
    }

    Reference Target() {
        const int number = 1 + UpTo(3);
        return number < 4 ? Reference{AutoType, "AUTO", number, {}} : Reference{0, "MSG", UpTo(1), {}};
    }

    std::optional<std::string> End() {
        static const std::vector<std::string> odd = {"", "*", "1a", " 5", "-3", "99999999999"};
        const int kind = UpTo(40);
        return kind == 0  ? std::nullopt
               : kind < 7 ? std::optional(odd.at(static_cast<std::size_t>(kind - 1)))
                          : Digits(3);
    }

    AutoNode Node() {
        AutoNode node;
        node.type = "AUTO";
        if (UpTo(9) > 0) {
            node.settings.numberOfDigits = UpTo(3);
        }
        if (UpTo(5) > 0) {
            node.settings.retryLimit = UpTo(2);
        }
        node.settings.terminatingDigit =
            std::array{"No", "*", "#", "*/#", "?"}.at(static_cast<std::size_t>(UpTo(4)));
        for (int rows = UpTo(4); rows > 0; --rows) {
            node.actions.push_back({rows, Target(), End(), End()});
            if (UpTo(2) > 0 && node.actions.back().low) {
                node.actions.back().high = node.actions.back().low;
            }
        }
        std::ranges::generate(node.branches, [this] { return Target(); });
        return node;
    }

    Step Deed() {
        const auto branch = static_cast<std::size_t>(UpTo(4));
        return UpTo(3) == 0 ? Step{Step::Kind::Except, {}, branch, {}, {}}
                            : Step{Step::Kind::Enter, Digits(3), 0, {}, {}};
    }

  private:
    std::mt19937 random_{14};
};

// Whether a range holds an entry, as it is meant in one of the ways that there are.
bool MayHold(const Action& action, const std::string& entry) {
    using End = std::optional<std::string>;
    const auto between = [&](const End& low, const End& high, auto form) {
        return (!low || form(*low) <= form(entry)) && (!high || form(entry) <= form(*high));
    };
    const auto held = [&](const End& low, const End& high) {
        return between(low, high, [](const std::string& text) { return std::atoll(text.c_str()); }) ||
               between(low, high, [](const std::string& text) { return text; }) ||
               between(low, high, [](const std::string& text) { return std::pair(text.size(), text); });
    };
    return held(action.low, action.high) || ((!action.low || !action.high) && held("0", "0"));
}

bool IsClear(const Action& action) {
    const auto digits = [](const std::string& text) {
        return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    };
    return action.low && action.high && digits(*action.low) && digits(*action.high) &&
           action.low->size() == action.high->size();
}

std::string Text(const Reference& target) { return target.type + std::to_string(target.number); }

// What comes of an entry, whatever is meant by what is not known: how many digits are taken, whether an
// action whose range is not clear holds them, which of several wins.
struct Meaning {
    std::set<std::string> targets;
    bool nobody = false; // or none of them
};

Meaning Meant(const AutoNode& node, const std::string& digits) {
    Meaning meaning;
    const auto stored = node.settings.numberOfDigits.value_or(0);
    for (std::size_t taken = stored > 0 ? digits.size() : 1; taken <= digits.size(); ++taken) {
        const std::string entry = digits.substr(0, taken);
        bool held = false;
        for (const Action& action : node.actions) {
            const bool clear = IsClear(action);
            if (clear ? action.low->size() == taken && *action.low <= entry && entry <= *action.high
                      : MayHold(action, entry)) {
                meaning.targets.insert(Text(action.target));
                held = held || clear;
            }
        }
        meaning.nobody = meaning.nobody || !held;
    }
    return meaning;
}

// The same of a step, with what comes of no entry. An entry that none holds may be told by a name.
std::set<std::string> Resolved(const AutoNode& node, const Step& step, const std::string& nobody = "") {
    const bool entered = step.kind == Step::Kind::Enter;
    Meaning meaning =
        entered ? Meant(node, step.digits) : Meaning{{Text(node.branches.at(step.branch))}, false};
    const std::string keys = node.settings.terminatingDigit.value_or("?");
    const char* key = step.branch == 3 ? "*" : "#";
    if (!entered &&
        (step.branch == 0 || (step.branch > 2 && (keys == "?" || keys.find(key) != std::string::npos)))) {
        meaning.nobody = true;
    }
    if (meaning.nobody) {
        meaning.targets.insert(nobody.empty() ? Text(node.branches.at(entered ? 1 : 0)) : nobody);
        if (node.settings.retryLimit != 0) {
            meaning.targets.insert("again");
        }
    }
    return meaning.targets;
}

std::set<std::string> Told(const Outcomes& outcomes) {
    std::set<std::string> told;
    for (const auto& [target, by, place] : outcomes.ways) {
        told.insert(by == Outcome::By::Again ? "again" : Text({0, target.type, target.number, {}}));
    }
    return told;
}

Outcomes Take(const Menu& menu, const Step& step) {
    return step.kind == Step::Kind::Enter ? menu.Enter(step.digits) : menu.Except(step.branch);
}

bool Takes(const Menu& menu, const Step& step) {
    return step.digits.size() <= static_cast<std::size_t>(menu.Entries().most);
}

// The exceptions, and all entries of so many digits at most.
std::vector<Step> DeedsUpTo(int most) {
    std::vector<Step> deeds;
    for (std::size_t branch = 0; branch < BranchRules.size(); ++branch) {
        deeds.push_back({Step::Kind::Except, {}, branch, {}, {}});
    }
    for (int length = 1; length <= most; ++length) {
        for (int sequence = 0; sequence < SequencesOf(length); ++sequence) {
            deeds.push_back({Step::Kind::Enter, SequenceText(length, sequence), 0, {}, {}});
        }
    }
    return deeds;
}

TEST(Outcomes, AreAllThatMayBeMeantAndCertainOnlyWhereThatIsOne) {
    Chance chance;
    for (int round = 0; round < 20000; ++round) {
        CallMap map;
        std::set<std::string> reached = {"AUTO1"};
        std::vector<Step> steps;
        for (int number = 1; number <= 3; ++number) {
            map.menus.emplace(number, Menu(number, chance.Node()));
        }
        for (int count = 1 + chance.UpTo(2); count > 0; --count) {
            const Step step = chance.Deed();
            std::set<std::string> next;
            for (const auto& [number, menu] : map.menus) {
                const std::string name = "AUTO" + std::to_string(number);
                if (!reached.contains(name) || !Takes(menu, step)) {
                    continue;
                }
                SCOPED_TRACE(std::to_string(round) + ' ' + step.digits);
                auto resolved = Resolved(menu.Node(), step);
                const Outcomes outcomes = Take(menu, step);
                ASSERT_EQ(Told(outcomes), resolved);
                ASSERT_EQ(outcomes.IsCertain(), resolved.size() == 1);
                const bool spans = round % 8 == 0 && step.kind == Step::Kind::Enter;
                for (const auto& [low, high, spanned] : spans ? SpansOf(menu) : std::vector<EntrySpan>()) {
                    if (low.size() == step.digits.size() && low <= step.digits && step.digits <= high) {
                        ASSERT_EQ(spanned.IsCertain(), outcomes.IsCertain());
                        ASSERT_TRUE(spanned.more > 0 || Told(spanned) == resolved);
                        ASSERT_EQ(spanned.reasons, outcomes.reasons);
                    }
                }
                if (resolved.erase("again") > 0) {
                    resolved.insert(name);
                }
                next.merge(resolved);
            }
            if (next.empty()) {
                break;
            }
            steps.push_back(step);
            reached = std::move(next);
        }
        std::set<std::string> walked;
        const Walk walk = WalkFrom(map, 1, steps);
        for (const Stop& stop : walk.back()) {
            walked.insert(Text({0, stop.node.type, stop.node.number, {}}));
        }
        ASSERT_EQ(walked, reached) << round;
    }
}

// A menu that differs from another in a thing or two.
AutoNode Changed(Chance& chance, AutoNode node) {
    const auto seldom = [&] { return chance.UpTo(3) == 0; };
    if (seldom()) {
        std::ranges::reverse(node.actions);
    }
    if (seldom() && !node.actions.empty()) {
        node.actions.front().high = chance.End();
    }
    if (seldom()) {
        node.actions.push_back({9, chance.Target(), chance.End(), chance.End()});
    }
    if (seldom()) {
        node.branches.at(static_cast<std::size_t>(chance.UpTo(4))) = chance.Target();
    }
    if (seldom()) {
        node.settings.retryLimit = chance.UpTo(1);
    }
    if (chance.UpTo(9) == 0) {
        node.settings.numberOfDigits = 1 + chance.UpTo(1);
    }
    return node;
}

TEST(CallChanges, AreThoseOfEveryEntryAndNoneWhereNothingDiffers) {
    Chance chance;
    int unchanged = 0;
    for (int round = 0; round < 2000; ++round) {
        AutoNode node = chance.Node();
        const int kind = chance.UpTo(199);
        node.settings.numberOfDigits = kind == 0 ? 0 : kind == 1 ? 4 : kind < 9 ? 3 : 1 + kind % 2;
        const Menu before(1, node);
        const Menu after(1, Changed(chance, node));
        const auto changes = CompareEntries(before, after);
        bool differs = before.Node().settings != after.Node().settings;
        const int longest = std::max(before.Entries().most, after.Entries().most);
        for (const Step& step : DeedsUpTo(std::min(4, longest))) {
            bool changed = false;
            if (Takes(before, step) && Takes(after, step)) {
                const auto differ = [&](const char* nobody) {
                    return Resolved(before.Node(), step, nobody) != Resolved(after.Node(), step, nobody);
                };
                const bool waiting =
                    Take(before, step).Has(Reason::LongerEntry) != Take(after, step).Has(Reason::LongerEntry);
                differs = differs || waiting || differ("");
                changed = waiting || (differ("") && differ("nobody"));
            } else {
                const Menu& taking = Takes(before, step) ? before : after;
                changed = !Meant(taking.Node(), step.digits).targets.empty();
            }
            const bool told = std::ranges::any_of(changes, [&](const CallChange& change) {
                return std::ranges::any_of(change.entries, [&](const auto& entries) {
                    return entries.first.size() == step.digits.size() && entries.first <= step.digits &&
                           step.digits <= entries.second;
                });
            });
            ASSERT_TRUE(told == changed || step.kind == Step::Kind::Except) << round << ' ' << step.digits;
        }
        ASSERT_EQ(CompareCalls(&before, &after).empty(), !differs) << round;
        unchanged += differs ? 0 : 1;
    }
    EXPECT_GT(unchanged, 200) << "of the pairs that are compared";
}

// "1 MSG 11" is an action of the range 1-1.
AutoNode NodeOf(const std::vector<std::string>& actions, const std::vector<int>& prompts = {}) {
    AutoNode node;
    node.settings.numberOfDigits = 2;
    for (const std::string& action : actions) {
        const std::string range = action.substr(0, action.find(' '));
        const int number = std::stoi(action.substr(action.rfind(' ')));
        node.actions.push_back({0, {MessageType, "MSG", number, {}}, range.substr(0, range.find('-')), {}});
        node.actions.back().high = range.substr(range.find('-') + 1);
    }
    for (const int prompt : prompts) {
        node.prompts.push_back({0, {MessageType, "MSG", prompt, {}}});
    }
    return node;
}

TEST(CallChanges, AreToldInCalls) {
    const std::string nowhere = "nowhere (Invalid, or the menu again)";

    struct Case {
        AutoNode before;
        AutoNode after;
        std::vector<std::string> told;
    };

    const std::vector<Case> cases = {
        {NodeOf({"3 MSG 11"}), NodeOf({"3 MSG 2"}), {"entry 3: MSG 11 → MSG 2"}},
        {NodeOf({"1 MSG 1", "40-49 MSG 2"}),
         NodeOf({"40-42 MSG 2", "1 MSG 1", "49 MSG 2"}),
         {"entries 43-48: MSG 2 → " + nowhere}},
        {NodeOf({}),
         NodeOf({"1-2 MSG 1", "10-19 MSG 3"}),
         {"entry 1: " + nowhere + " → MSG 1, after a wait for more digits",
          "entry 2: " + nowhere + " → MSG 1", "entries 10-19: " + nowhere + " → MSG 3"}},
        {NodeOf({}, {1, 2, 3, 1}),
         NodeOf({}, {2, 1}),
         {"prompts: MSG 1 is played 1 times, not 2", "prompts: MSG 3 is no longer played"}},
        {NodeOf({}, {1, 2}), NodeOf({}, {2, 1}), {"prompts: they are played in another order"}},
    };
    for (const auto& [before, after, told] : cases) {
        const Menu from(1, before);
        const Menu to(1, after);
        std::vector<std::string> texts;
        for (const CallChange& change : CompareCalls(&from, &to)) {
            texts.push_back(change.Text());
        }
        EXPECT_EQ(texts, told);
    }
}

TEST(Paths, AreTheShortestAndLeadThere) {
    const TestStore store;
    DataBase dataBase;
    const TypeNames names(dataBase);
    Chance chance;
    const NodeKey to{MessageType, 1};
    for (int round = 0; round < 300; ++round) {
        CallMap map;
        for (int number = 1; number <= 3; ++number) {
            AutoNode node = chance.Node();
            node.settings.numberOfDigits = 1 + chance.UpTo(1);
            map.menus.emplace(number, Menu(number, node));
        }
        const auto found = FindPaths(map, names, to, 1);
        for (const bool certain : {true, false}) {
            std::set<NodeKey> reached = {{AutoType, 1}};
            std::size_t steps = 0;
            for (; steps < 5 && !reached.contains(to); ++steps) {
                for (const NodeKey& node : std::set(reached)) {
                    for (const Step& step : node.first == AutoType ? DeedsUpTo(2) : std::vector<Step>()) {
                        const Menu& menu = map.menus.at(node.second);
                        const Outcomes outcomes = Takes(menu, step) ? Take(menu, step) : Outcomes();
                        for (const Outcome& outcome : outcomes.ways) {
                            if (!certain || outcomes.IsCertain()) {
                                reached.insert(outcome.target.Key());
                            }
                        }
                    }
                }
            }
            const auto path = found.empty()                   ? std::nullopt
                              : certain || !found[0].possible ? found[0].certain
                                                              : found[0].possible;
            ASSERT_EQ(path.has_value(), steps < 5) << round;
            std::string line = "1 2 AUTO 1:";
            for (const PathStep& step : path.value_or(std::vector<PathStep>())) {
                line += ' ' + step.step;
            }
            const Verdict verdict = Judge(map, ExpectationOf(line + " -> MSG 1", names).value()).verdict;
            ASSERT_TRUE(!path || path->size() == steps) << line;
            ASSERT_TRUE(!path || verdict == Verdict::Certain || (!certain && verdict == Verdict::Possible))
                << line;
        }
    }
}

TEST(Calls, AreDescribedInTheirPage) {
    std::ifstream page(CALLS_PAGE);
    const std::string text(std::istreambuf_iterator<char>(page), {});
    for (const auto& [code, meaning] : ReasonRules) {
        const std::string row = std::string("| `") + code + "` | " + meaning + " |";
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
}

} // namespace
} // namespace KAL_AUTO_Node
