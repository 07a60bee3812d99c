#include "calls/Trace.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <set>

namespace KAL_AUTO_Node {
namespace {

// "1" is the range 1-1, "-5" one that lacks its first end; the targets are all different.
AutoNode NodeOf(std::optional<int> digits, const std::vector<std::string>& ranges) {
    AutoNode node;
    node.settings.numberOfDigits = digits;
    for (const std::string& range : ranges) {
        const auto dash = range.find('-');
        const std::string low = range.substr(0, dash);
        const int number = static_cast<int>(node.actions.size());
        node.actions.push_back({number, {MessageType, "MSG", number, {}}, low, low});
        if (dash != std::string::npos) {
            node.actions.back().high = range.substr(dash + 1);
        }
        if (low.empty()) {
            node.actions.back().low.reset();
        }
    }
    return node;
}

std::string Letters(const char* mark, const ActionSet& actions) {
    std::string letters = actions.count > 0 ? mark : "";
    for (const std::size_t action : actions.First()) {
        letters += static_cast<char>('A' + action);
    }
    return letters;
}

// By length: the intervals with the actions that hold them, "?" those that may, "+" those waited for; "."
// where there may be none.
std::string Described(const AutoNode& node) {
    std::string text;
    for (const DigitLength& length : DigitSpaceOf(node)) {
        text += length.length > 1 ? " |" : "";
        for (const DigitInterval& interval : length.intervals) {
            text += ' ' + SequenceText(length.length, interval.low);
            if (interval.high > interval.low) {
                text += '-' + SequenceText(length.length, interval.high);
            }
            text += (interval.nobody ? "." : "") + Letters("", interval.leads) + Letters("?", interval.may) +
                    Letters("+", interval.waits);
        }
    }
    return text.substr(1);
}

TEST(DigitSpace, TellsOfEverySequenceWhatHoldsItAndWhatCouldFollow) {
    struct Case {
        std::optional<int> digits;
        std::vector<std::string> ranges;
        const char* space; // or how it begins
    };

    const std::vector<Case> cases = {
        {2, {"1", "10-12", "12-15"}, "0. 1A+BC 2-9. | 00-09. 10-11B 12BC 13-15C 16-99."},
        {2, {"9-8", "001", "00-99"}, "0-9.+C | 00-99C"},
        {2, {"1-10"}, "0.+A 1.?A+A 2-9.?A | 00-10.?A 11-99."},
        {1, {"-5", "9"}, "0-5.?A 6-8. 9B"},
        {1, {"*", "10-2"}, "0.?A 1. 2.?B 3-9."},
        {{}, {"1", "20"}, "0. 1A 2.+B 3-9. | 00-09. 10-19.?A 20.B 21-99. | 000-099. 100-199.?A 200-209.?B"},
        {8, {"1"}, "0. 1A 2-9. | 00-09. 10-19.?A 20-99."},
    };
    for (const auto& [digits, ranges, space] : cases) {
        const std::string described = Described(NodeOf(digits, ranges));
        EXPECT_TRUE(described.starts_with(space) && (!digits || *digits > 7 || described == space))
            << described;
    }
}

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
        Step step;
        if (UpTo(3) == 0) {
            step.kind = Step::Kind::Except;
            step.branch = static_cast<std::size_t>(UpTo(4));
        } else {
            step.digits = Digits(3);
        }
        return step;
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

// What comes of a step, whatever is meant by what is not known: each of it is gone through.
std::set<std::string> Resolved(const AutoNode& node, const Step& step) {
    std::set<std::string> found;
    const auto text = [](const Reference& target) { return target.type + std::to_string(target.number); };
    const auto unanswered = [&](std::size_t branch) {
        found.insert(text(node.branches.at(branch)));
        if (node.settings.retryLimit != 0) {
            found.insert("again");
        }
    };
    if (step.kind == Step::Kind::Except) {
        const std::string keys = node.settings.terminatingDigit.value_or("?");
        const char* key = step.branch == 3 ? "*" : "#";
        if (step.branch == 0 || (step.branch > 2 && (keys == "?" || keys.find(key) != std::string::npos))) {
            unanswered(0);
        }
        found.insert(text(node.branches.at(step.branch)));
        return found;
    }
    const auto stored = node.settings.numberOfDigits.value_or(0);
    for (std::size_t taken = stored > 0 ? step.digits.size() : 1; taken <= step.digits.size(); ++taken) {
        const std::string entry = step.digits.substr(0, taken);
        for (unsigned with = 0; with < 1U << node.actions.size(); ++with) {
            bool held = false;
            for (std::size_t i = 0; i < node.actions.size(); ++i) {
                const Action& action = node.actions[i];
                if (IsClear(action)
                        ? action.low->size() == taken && *action.low <= entry && entry <= *action.high
                        : (with >> i & 1U) != 0 && MayHold(action, entry)) {
                    held = true;
                    found.insert(text(action.target));
                }
            }
            if (!held) {
                unanswered(1);
            }
        }
    }
    return found;
}

std::set<std::string> Told(const Outcomes& outcomes) {
    std::set<std::string> told;
    for (const auto& [target, by, place] : outcomes.ways) {
        told.insert(by == Outcome::By::Again ? "again" : target.type + std::to_string(target.number));
    }
    return told;
}

TEST(Outcomes, AreAllThatMayBeMeantAndCertainOnlyWhereThatIsOne) {
    Chance chance;
    for (int round = 0; round < 20000; ++round) {
        CallMap map;
        for (int number = 1; number <= 3; ++number) {
            map.menus.emplace(number, Menu(number, chance.Node()));
        }
        std::set<std::string> reached = {"AUTO1"};
        std::vector<Step> steps;
        for (int count = 1 + chance.UpTo(2); count > 0; --count) {
            const Step& step = steps.emplace_back(chance.Deed());
            std::set<std::string> next;
            for (const auto& [number, menu] : map.menus) {
                if (!reached.contains("AUTO" + std::to_string(number)) ||
                    step.digits.size() > static_cast<std::size_t>(menu.Entries().most)) {
                    continue;
                }
                auto resolved = Resolved(menu.Node(), step);
                const bool entered = step.kind == Step::Kind::Enter;
                const Outcomes outcomes = entered ? menu.Enter(step.digits) : menu.Except(step.branch);
                ASSERT_EQ(Told(outcomes), resolved) << round << ' ' << step.digits;
                ASSERT_EQ(outcomes.IsCertain(), resolved.size() == 1);
                for (const auto& [low, high, spanned] :
                     entered&& round % 4 == 0 ? SpansOf(menu) : std::vector<EntrySpan>()) {
                    if (low.size() == step.digits.size() && low <= step.digits && step.digits <= high) {
                        ASSERT_EQ(spanned.IsCertain(), outcomes.IsCertain());
                        ASSERT_TRUE(spanned.more > 0 || Told(spanned) == resolved)
                            << round << ' ' << step.digits;
                        ASSERT_EQ(spanned.reasons, outcomes.reasons) << round << ' ' << step.digits;
                    }
                }
                if (resolved.erase("again") > 0) {
                    resolved.insert("AUTO" + std::to_string(number));
                }
                next.merge(resolved);
            }
            if (next.empty()) {
                steps.pop_back();
                break;
            }
            reached = std::move(next);
        }
        std::set<std::string> walked;
        const Walk walk = WalkFrom(map, 1, steps);
        for (const Stop& stop : walk.back()) {
            walked.insert(stop.node.type + std::to_string(stop.node.number));
        }
        ASSERT_EQ(walked, reached) << round;
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
