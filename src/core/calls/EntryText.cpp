#include "calls/EntryText.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

std::string NamesOf(const AutoNode& node, const ActionSet& actions) {
    std::string text;
    for (const std::size_t action : actions.First()) {
        text += (text.empty() ? "" : ", ") + EntryText(node.actions[action]);
    }
    const std::size_t more = actions.count - actions.First().size();
    return more > 0 ? text + " and " + std::to_string(more) + " more" : text;
}

} // namespace

std::string Codes(const std::vector<Reason>& reasons) {
    std::string codes;
    for (const Reason reason : reasons) {
        codes += (codes.empty() ? "" : ", ") + std::string(TextOf(reason).code);
    }
    return codes;
}

std::string Sequences(int length, const DigitInterval& interval) {
    const std::string low = SequenceText(length, interval.low);
    return interval.low == interval.high ? low : low + '-' + SequenceText(length, interval.high);
}

std::string WaitingAfter(const Menu& menu, const DigitInterval& interval) {
    if (interval.waits.count == 0) {
        return {};
    }
    const std::string end =
        menu.HasTerminator() ? "waits for digits or " + TerminatingDigitText(menu.Node().settings) : "waits";
    return end + ", because of " + NamesOf(menu.Node(), interval.waits);
}

std::string EntriesText(const Menu& menu) {
    const auto [most, known] = menu.Entries();
    return "Takes " + (most == 1 ? "1 digit" : "1 to " + std::to_string(most) + " digits") +
           (known ? "" : ", or fewer: how many is not known") + "; Invalid is " +
           menu.ExceptionTarget(BranchOf(Slot::Invalid)).Text() + "; callers " +
           (menu.MayAskAgain() ? "may be" : "are not") + " asked again";
}

IntervalText TextOf(const Menu& menu, int length, const DigitInterval& interval) {
    const Outcomes outcomes = menu.Enter(length, interval);
    IntervalText text{Sequences(length, interval),
                      interval.Count(),
                      TextOf(outcomes),
                      {},
                      WaitingAfter(menu, interval),
                      Codes(outcomes.reasons),
                      {}};
    if (outcomes.IsCertain() && outcomes.more == 0) {
        const auto& [target, by, place] = outcomes.ways.front();
        if (by == Outcome::By::Action) {
            text.label = menu.Node().actions[place].target.label;
        }
        if (target.hasNumber && RefersToNode(target.typeID)) {
            text.node = target.Key();
        }
    }
    return text;
}

std::string EntryAnswer(const Menu& menu, std::span<const DigitLength> lengths, const std::string& entry) {
    const auto length = static_cast<int>(entry.size());
    if (entry.find_first_not_of("0123456789") != std::string::npos) {
        return entry + ": an entry is of digits";
    }
    if (length > menu.Entries().most) {
        return entry + ": " + TextOf(Reason::EntryTooLong).meaning;
    }
    for (const DigitLength& one : lengths) {
        const auto found = std::ranges::find_if(one.intervals, [&](const DigitInterval& interval) {
            return one.length == length && entry <= SequenceText(length, interval.high);
        });
        if (found != one.intervals.end()) {
            // By itself: where an interval is of many, only its first was asked.
            const Outcomes outcomes = menu.Enter(entry);
            const std::string waits = WaitingAfter(menu, *found);
            return entry + ": " + TextOf(outcomes) + (waits.empty() ? "" : "; " + waits);
        }
    }
    return {};
}

} // namespace KAL_AUTO_Node
