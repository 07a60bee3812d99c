#include "calls/Outcomes.h"

#include "platform/NumericValue.h"

#include <set>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

void Add(Outcomes& outcomes, Outcome outcome) {
    if (std::ranges::none_of(outcomes.ways, [&](const Outcome& way) { return way.IsLike(outcome); })) {
        outcomes.ways.push_back(std::move(outcome));
    }
}

void Add(Outcomes& outcomes, Reason reason, bool holds = true) {
    if (holds && !outcomes.Has(reason)) {
        outcomes.reasons.push_back(reason);
    }
}

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", or ") + word;
    }
    return text;
}

} // namespace

// The actions that hold an entry, and those that may.
struct Menu::Holders {
    std::span<const std::size_t> leads;
    std::span<const std::size_t> may;
    bool nobody = true;
    bool unclear = false;
    bool fewerDigits = false; // the node may take fewer than the entry has
    bool waits = false;
    // How many different targets they have; all of those listed where it is 0.
    std::size_t leadTargets = 0;
    std::size_t targets = 0;
};

Menu::Menu(int number, AutoNode node)
    : number_(number), node_(std::move(node)), entries_(EntryLengthOf(node_.settings)),
      ranges_(RangesOf(node_.actions, entries_.most)) {}

Outcomes Menu::Enter(const std::string& digits) const {
    const auto length = static_cast<int>(digits.size());
    const auto sequence = static_cast<int>(NumericValue(digits));
    std::vector<std::size_t> leads;
    std::vector<std::size_t> may;
    std::array<bool, LongestEntry + 1> held{};
    Holders holders;
    for (const auto& [action, ownLength, low, high, clear] : ranges_) {
        const bool longer = ownLength > length;
        if (ownLength < length && entries_.known) {
            continue;
        }
        const int scale = SequencesOf(longer ? ownLength - length : length - ownLength);
        const bool holds = longer ? sequence >= low / scale && sequence <= high / scale
                                  : sequence / scale >= low && sequence / scale <= high;
        if (!holds) {
            continue;
        }
        if (longer) {
            holders.waits = true;
            continue;
        }
        held.at(static_cast<std::size_t>(ownLength)) |= clear;
        holders.unclear = holders.unclear || !clear;
        (clear && ownLength == length ? leads : may).push_back(action);
    }
    const auto first = held.begin() + (entries_.known ? length : 1);
    holders.nobody = std::find(first, held.begin() + length + 1, false) != held.begin() + length + 1;
    holders.fewerDigits = !entries_.known && length > 1;
    holders.leads = leads;
    holders.may = may;
    return Combine(holders);
}

Outcomes Menu::Enter(int length, const DigitInterval& interval) const {
    return Combine({interval.leads.First(), interval.may.First(), interval.nobody, interval.unclear,
                    !entries_.known && length > 1, interval.waits.count > 0, interval.leadTargets,
                    interval.targets});
}

Outcomes Menu::Combine(const Holders& holders) const {
    Outcomes outcomes;
    std::set<Target> known;
    const auto add = [&](std::span<const std::size_t> actions) {
        for (const std::size_t action : actions) {
            Target target = ActionTarget(action);
            if (known.insert(target).second) {
                outcomes.ways.push_back({std::move(target), Outcome::By::Action, action});
            }
        }
        return known.size();
    };
    const std::size_t leadTargets = std::max(holders.leadTargets, add(holders.leads));
    const std::size_t targets = std::max(holders.targets, add(holders.may));
    outcomes.more = targets - known.size();
    if (holders.nobody) {
        AddNoEntry(outcomes, BranchOf(Slot::Invalid), Reason::NoAction);
    }
    if (outcomes.IsCertain()) {
        outcomes.reasons.clear();
    } else {
        Add(outcomes, Reason::SeveralActions, leadTargets > 1);
        Add(outcomes, Reason::RangeUnclear, holders.unclear && (targets > leadTargets || holders.nobody));
        Add(outcomes, Reason::SettingUnclear, holders.fewerDigits);
    }
    Add(outcomes, Reason::LongerEntry, holders.waits && !HasTerminator());
    return outcomes;
}

// What becomes of a call in which nothing was entered that counts.
void Menu::AddNoEntry(Outcomes& outcomes, std::size_t branch, Reason reason) const {
    if (MayAskAgain()) {
        Add(outcomes, Outcome{Itself(), Outcome::By::Again, 0});
        Add(outcomes, reason);
    }
    Add(outcomes, Outcome{ExceptionTarget(branch), Outcome::By::Exception, branch});
}

Outcomes Menu::Except(std::size_t branch) const {
    Outcomes outcomes;
    const Slot slot = Branches.at(branch).slot;
    if (slot == Slot::Timeout) {
        AddNoEntry(outcomes, branch, Reason::AskedAgain);
        return outcomes;
    }
    Add(outcomes, Outcome{ExceptionTarget(branch), Outcome::By::Exception, branch});
    if (slot == Slot::Star || slot == Slot::Pound) {
        const std::string_view keys = TerminatingDigits.at(TerminatingDigitOf(node_.settings));
        const bool ends = keys.find(slot == Slot::Star ? '*' : '#') != std::string_view::npos;
        const bool unclear = !IsTerminatingDigit(node_.settings);
        if (ends || unclear) {
            Add(outcomes, unclear ? Reason::SettingUnclear : Reason::Terminator);
            AddNoEntry(outcomes, BranchOf(Slot::Timeout), Reason::AskedAgain);
        }
        if (outcomes.IsCertain()) {
            outcomes.reasons.clear();
        }
    }
    return outcomes;
}

std::vector<Target> PlayedBy(const AutoNode& node) {
    std::vector<Target> played;
    for (const Prompt& prompt : node.prompts) {
        if (prompt.target.typeID != NumberlessType) {
            played.push_back(TargetOf(prompt.target, Slot::Prompts));
        }
    }
    return played;
}

std::vector<EntrySpan> SpansOf(const Menu& menu) {
    std::vector<EntrySpan> spans;
    for (const auto& [length, intervals] : DigitSpaceOf(menu.Node())) {
        for (const DigitInterval& interval : intervals) {
            Outcomes outcomes = menu.Enter(length, interval);
            const std::string high = SequenceText(length, interval.high);
            // Of ways that are not listed it is not known whether they are the same.
            if (interval.low > 0 && outcomes.more == 0 && outcomes == spans.back().outcomes) {
                spans.back().high = high;
            } else {
                spans.push_back({SequenceText(length, interval.low), high, std::move(outcomes)});
            }
        }
    }
    return spans;
}

std::string TextOf(const Outcomes& outcomes, std::optional<std::size_t> branch,
                   const std::function<std::string(const Target&)>& nameOf) {
    std::vector<std::string> words;
    std::vector<std::string> nowhere;
    for (const auto& [target, by, place] : outcomes.ways) {
        if (by == Outcome::By::Again) {
            (branch ? words : nowhere).emplace_back("the menu again");
        } else if (by == Outcome::By::Action || place == branch) {
            words.push_back(nameOf(target));
        } else if (branch) {
            words.push_back(Branches.at(place).label + (" (" + nameOf(target)) + ')');
        } else {
            nowhere.emplace_back(Branches.at(place).label);
        }
    }
    if (outcomes.more > 0) {
        words.push_back(std::to_string(outcomes.more) + " more");
    }
    if (!nowhere.empty()) {
        std::ranges::reverse(nowhere);
        words.push_back("nowhere (" + Joined(nowhere) + ')');
    }
    return Joined(words);
}

} // namespace KAL_AUTO_Node
