#include "audit/DigitSpace.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>
#include <tuple>

namespace KAL_AUTO_Node {

namespace {

constexpr int LongestSequence = SettingRules.front().last;

constexpr std::array<int, LongestSequence + 1> PowersOfTen = [] {
    std::array<int, LongestSequence + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = powers[i - 1] * 10;
    }
    return powers;
}();

constexpr int PowerOfTen(int exponent) { return PowersOfTen[static_cast<std::size_t>(exponent)]; }

bool IsDigits(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

// The range of an action that takes part.
struct Range {
    std::size_t action;
    int length;
    int low;
    int high;
};

std::vector<Range> RangesOf(const std::vector<Action>& actions, int digits) {
    const auto number = [](std::string_view text) {
        int value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    };
    std::vector<Range> ranges;
    for (std::size_t i = 0; i < actions.size(); ++i) {
        if (!RangeFault(actions[i], digits)) {
            const auto& [low, high] = RangeOf(actions[i]);
            ranges.push_back({i, static_cast<int>(low.size()), number(low), number(high)});
        }
    }
    return ranges;
}

// A place at which an action's range begins, or is over.
struct Edge {
    int at;
    bool begins;
    bool leads; // or a longer sequence does
    std::size_t action;
};

ActionSet Summary(const std::set<std::size_t>& actions) {
    ActionSet summary{actions.size(), {}};
    std::copy_n(actions.begin(), std::min(actions.size(), summary.first.size()), summary.first.begin());
    return summary;
}

DigitLength LengthOf(const std::vector<Range>& ranges, int length) {
    std::vector<Edge> edges;
    for (const auto& [action, ownLength, low, high] : ranges) {
        if (ownLength >= length) {
            const int longer = PowerOfTen(ownLength - length);
            const bool leads = ownLength == length;
            edges.push_back({low / longer, true, leads, action});
            edges.push_back({high / longer + 1, false, leads, action});
        }
    }
    std::ranges::sort(edges, {}, &Edge::at);

    DigitLength result{length, {}};
    std::set<std::size_t> leads;
    std::set<std::size_t> waits;
    int from = 0;
    const auto end = [&](int at) {
        if (at > from) {
            DigitInterval interval{from, at - 1, Summary(leads), Summary(waits)};
            DigitInterval* last = result.intervals.empty() ? nullptr : &result.intervals.back();
            if (last != nullptr && last->leads == interval.leads && last->waits == interval.waits) {
                last->high = interval.high;
            } else {
                result.intervals.push_back(interval);
            }
            from = at;
        }
    };
    for (const Edge& edge : edges) {
        end(edge.at);
        auto& actions = edge.leads ? leads : waits;
        if (edge.begins) {
            actions.insert(edge.action);
        } else {
            actions.erase(edge.action);
        }
    }
    end(PowerOfTen(length));
    return result;
}

} // namespace

int NumberOfDigits(const AutoNode& node) { return ValueOf(SettingRules.front(), node.settings); }

std::optional<Fault> RangeFault(const Action& action, int digits) {
    if (!action.low || !action.high || !IsDigits(*action.low) || !IsDigits(*action.high)) {
        return Fault::RangeNotDigits;
    }
    if (action.low->size() != action.high->size()) {
        return Fault::RangeLengths;
    }
    if (*action.low > *action.high) {
        return Fault::ReversedRange;
    }
    return action.low->size() > static_cast<std::size_t>(digits) ? std::optional(Fault::RangeTooLong)
                                                                 : std::nullopt;
}

std::string DigitLength::Text(int sequence) const {
    std::string digits = std::to_string(sequence);
    return std::string(static_cast<std::size_t>(length) - digits.size(), '0') + digits;
}

std::vector<DigitLength> DigitSpaceOf(const std::vector<Action>& actions, int digits) {
    const std::vector<Range> ranges = RangesOf(actions, digits);
    std::vector<DigitLength> lengths;
    for (int length = 1; length <= digits; ++length) {
        lengths.push_back(LengthOf(ranges, length));
    }
    return lengths;
}

std::vector<SharedDigits> FindSharedDigits(const std::vector<Action>& actions, int digits) {
    std::vector<Range> ranges = RangesOf(actions, digits);
    std::ranges::sort(ranges, [](const Range& a, const Range& b) {
        return std::tie(a.length, a.low, a.action) < std::tie(b.length, b.low, b.action);
    });
    std::vector<SharedDigits> shared;
    const Range* furthest = nullptr;
    for (const Range& range : ranges) {
        const bool beside = furthest != nullptr && furthest->length == range.length;
        if (beside && range.low <= furthest->high) {
            const DigitLength form{range.length, {}};
            shared.push_back({range.action, furthest->action, form.Text(range.low),
                              form.Text(std::min(range.high, furthest->high))});
        }
        if (!beside || range.high > furthest->high) {
            furthest = &range;
        }
    }
    return shared;
}

} // namespace KAL_AUTO_Node
