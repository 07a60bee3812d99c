#include "calls/CallChanges.h"
#include "calls/Expectations.h"
#include "calls/Paths.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace KAL_AUTO_Node {
namespace {

// Small menus of which much is unclear, and what callers do there.
class Chance {
  public:
    int UpTo(int last) { return std::uniform_int_distribution<>(0, last)(random_); }

    std::string Digits() { return SequenceText(1 + UpTo(2), UpTo(9)); }

    Reference Target() {
        const int number = 1 + UpTo(3);
        return number < 4 ? Reference{AutoType, "AUTO", number, {}} : Reference{0, "MSG", UpTo(1), {}};
    }

    std::optional<std::string> End() {
        static const std::vector<std::optional<std::string>> odd = {{},   "",   "*",          "1a",
                                                                    " 5", "-3", "99999999999"};
        const auto kind = static_cast<std::size_t>(UpTo(40));
        return kind < odd.size() ? odd[kind] : Digits();
    }

    AutoNode Node() {
        static constexpr std::array keys = {"No", "*", "#", "*/#", "?"};
        AutoNode node;
        node.type = "AUTO";
        node.settings.numberOfDigits = UpTo(9) > 0 ? std::optional(UpTo(3)) : std::nullopt;
        node.settings.retryLimit = UpTo(5) > 0 ? std::optional(UpTo(2)) : std::nullopt;
        node.settings.terminatingDigit = keys.at(static_cast<std::size_t>(UpTo(4)));
        for (int rows = UpTo(4); rows > 0; --rows) {
            const auto low = End();
            node.actions.push_back({rows, Target(), low, UpTo(2) > 0 ? low : End()});
        }
        std::ranges::generate(node.branches, [this] { return Target(); });
        return node;
    }

    Step Deed() {
        const auto branch = static_cast<std::size_t>(UpTo(4));
        return UpTo(3) == 0 ? Step{Step::Kind::Except, {}, branch, {}, {}}
                            : Step{Step::Kind::Enter, Digits(), 0, {}, {}};
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
    for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
        deeds.push_back({Step::Kind::Except, {}, branch, {}, {}});
    }
    for (int length = 1; length <= most; ++length) {
        for (int sequence = 0; sequence < SequencesOf(length); ++sequence) {
            deeds.push_back({Step::Kind::Enter, SequenceText(length, sequence), 0, {}, {}});
        }
    }
    return deeds;
}

// Where a call may be after steps, "ended" where it is with steps left.
std::set<std::string> After(const CallMap& map, const std::string& at, std::span<const Step> steps) {
    if (steps.empty()) {
        return {at};
    }
    const Menu* menu =
        map.MenuOf({at.starts_with("AUTO") ? AutoType : MessageType, at.back() - '0', true, {}});
    if (menu == nullptr || !Takes(*menu, steps[0])) {
        return {"ended"};
    }
    std::set<std::string> reached;
    for (const std::string& next : Resolved(menu->Node(), steps[0])) {
        reached.merge(After(map, next == "again" ? at : next, steps.subspan(1)));
    }
    return reached;
}

TEST(Outcomes, AreAllThatMayBeMeantAndCertainOnlyWhereThatIsOne) {
    Chance chance;
    for (int round = 0; round < Rounds(20000); ++round) {
        const Menu menu(1, chance.Node());
        const Step step = chance.Deed();
        if (!Takes(menu, step)) {
            continue;
        }
        SCOPED_TRACE(std::to_string(round) + ' ' + step.digits);
        const auto resolved = Resolved(menu.Node(), step);
        const Outcomes outcomes = Take(menu, step);
        ASSERT_EQ(Told(outcomes), resolved);
        ASSERT_EQ(outcomes.IsCertain(), resolved.size() == 1);
        ASSERT_EQ(outcomes.IsCertain(),
                  outcomes.reasons.size() == (outcomes.Has(Reason::LongerEntry) ? 1 : 0));
        for (const auto& [low, high, spanned] : round % 8 == 0 ? SpansOf(menu) : std::vector<EntrySpan>()) {
            if (low.size() == step.digits.size() && low <= step.digits && step.digits <= high) {
                ASSERT_TRUE(spanned.more > 0 || Told(spanned) == resolved);
                ASSERT_EQ(spanned.reasons, outcomes.reasons);
            }
        }
    }
}

// A menu that has a thing or two of another.
AutoNode Changed(Chance& chance, AutoNode node, const AutoNode& other) {
    switch (chance.UpTo(3)) {
    case 0:
        std::ranges::reverse(node.actions);
        break;
    case 1:
        std::ranges::copy(other.actions, std::back_inserter(node.actions));
        break;
    default:
        node.settings.retryLimit = other.settings.retryLimit;
    }
    const auto branch = static_cast<std::size_t>(chance.UpTo(19));
    if (branch < node.branches.size()) {
        node.branches.at(branch) = other.branches.at(branch);
    } else if (branch == 19) {
        node.settings.numberOfDigits = 2;
    }
    return node;
}

// Whether a text tells, in whatever order, what the step leads to.
bool SameWords(const std::string& told, const Menu& menu, const Step& step) {
    const Outcomes outcomes = Takes(menu, step) ? Take(menu, step) : Outcomes();
    const std::string text = Takes(menu, step) ? TextOf(outcomes) : "not taken";
    return std::ranges::is_permutation(
        told, text + (outcomes.Has(Reason::LongerEntry) ? ", after a wait for more digits" : ""));
}

TEST(CallChanges, AreThoseOfEveryEntryAndNoneWhereNothingDiffers) {
    Chance chance;
    for (int round = 0; round < Rounds(1000); ++round) {
        AutoNode node = chance.Node();
        const int kind = chance.UpTo(199);
        node.settings.numberOfDigits = kind == 0 ? 0 : kind == 1 ? 4 : kind < 9 ? 3 : 1 + kind % 2;
        const Menu before(1, node);
        const Menu after(1, Changed(chance, node, chance.Node()));
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
            const auto told = std::ranges::find_if(changes, [&](const CallChange& change) {
                return std::ranges::any_of(change.entries, [&](const auto& entries) {
                    return entries.first.size() == step.digits.size() && entries.first <= step.digits &&
                           step.digits <= entries.second;
                });
            });
            if (step.kind == Step::Kind::Except) {
                continue;
            }
            ASSERT_EQ(told != changes.end(), changed) << round << ' ' << step.digits;
            for (const auto& [menu, text] :
                 {std::pair(&before, &CallChange::before), {&after, &CallChange::after}}) {
                ASSERT_TRUE(!changed || SameWords((*told).*text, *menu, step))
                    << round << ' ' << step.digits << *told.*text;
            }
        }
        ASSERT_EQ(CompareCalls(&before, &after).empty(), !differs) << round;
    }
}

std::string Lines(const CallMap& before, const CallMap& after) {
    std::string lines;
    for (const auto& [node, changes] : CompareCalls(before, after)) {
        for (const CallChange& change : changes) {
            lines += std::to_string(node.number) + ' ' + change.Text() + '\n';
        }
    }
    return lines;
}

TEST(CallChanges, TellWhatIsPlayedAndWhereNoCallerGetsAnyMore) {
    const auto map = [](const std::vector<int>& prompts) {
        AutoNode node;
        for (const int prompt : prompts) {
            node.prompts.push_back({0, {prompt == 0 ? NumberlessType : MessageType, "MSG", prompt, {}}});
        }
        CallMap one;
        one.Put(1, node);
        return one;
    };
    EXPECT_EQ(Lines(map({1, 2, 3, 1}), map({2, 4, 1})),
              "1 prompts: MSG 1 is played once, not 2 times\n1 prompts: MSG 3 is no longer played\n"
              "1 prompts: MSG 4 is played, too\n");
    EXPECT_EQ(Lines(map({1, 2}), map({2, 0, 1})), "1 prompts: they are played in another order\n");
    CallMap before;
    before.entries = {1};
    AutoNode node;
    node.settings.numberOfDigits = 1;
    for (int number = 4; number > 0; --number) {
        before.Put(number, node);
        node.actions = {{1, {AutoType, "AUTO", number, {}}, "3", "3"}};
    }
    CallMap after = before;
    node.actions.clear();
    after.Put(2, node);
    EXPECT_EQ(Lines(before, after), "2 entry 3: AUTO 3 → nowhere (Invalid, or the menu again)\n"
                                    "3 no caller gets there any more\n4 no caller gets there any more\n");
}

TEST(Paths, AreTheShortestAndLeadThere) {
    const TestStore store;
    DataBase dataBase;
    const TypeNames names(dataBase);
    Chance chance;
    const NodeKey to{MessageType, 1};
    for (int round = 0; round < Rounds(400); ++round) {
        CallMap map;
        for (int number = 1; number <= 3; ++number) {
            AutoNode node = chance.Node();
            node.settings.numberOfDigits = 1 + chance.UpTo(1);
            map.menus.emplace(number, Menu(number, node));
        }
        const auto found = FindPaths(map, names, to, 1);
        for (const bool certain : {true, false}) {
            std::set<std::string> near = {"AUTO1"};
            std::size_t steps = 0;
            for (; steps < 5 && !near.contains("MSG1"); ++steps) {
                for (const std::string& at : std::set(near)) {
                    for (const Step& step : DeedsUpTo(2)) {
                        auto next = After(map, at, {&step, 1});
                        if (!certain || next.size() == 1) {
                            near.merge(next);
                        }
                    }
                }
            }
            const auto path = found.empty()                   ? std::nullopt
                              : certain || !found[0].possible ? found[0].certain
                                                              : found[0].possible;
            ASSERT_EQ(path.has_value(), steps < 5) << round;
            ASSERT_TRUE(!path || path->size() == steps) << round;
            std::string line = "1 2 AUTO 1:";
            for (const PathStep& step : path.value_or(std::vector<PathStep>())) {
                line += ' ' + step.step;
            }
            const auto expectation = ExpectationOf(line + " -> MSG 1", names).value();
            const auto reached = After(map, "AUTO1", expectation.steps);
            const Verdict meant = !reached.contains("MSG1") ? Verdict::Contradicted
                                  : reached.size() == 1     ? Verdict::Certain
                                                            : Verdict::Possible;
            ASSERT_EQ(Judge(map, expectation).verdict, meant) << line;
            ASSERT_TRUE(!path || meant == Verdict::Certain || (!certain && meant == Verdict::Possible))
                << line;
        }
    }
}

} // namespace
} // namespace KAL_AUTO_Node
