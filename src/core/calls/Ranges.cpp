#include "calls/Ranges.h"

#include "platform/NumericValue.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr std::array<int, LongestEntry + 1> PowersOfTen = [] {
    std::array<int, LongestEntry + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = powers[i - 1] * 10;
    }
    return powers;
}();

bool IsDigits(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

int Value(std::string_view digits) { return static_cast<int>(NumericValue(digits)); }

// The orders by which a range may be meant. Among sequences of one length they are the same.
using Before = bool (*)(std::string_view a, std::string_view b);

constexpr std::array<Before, 3> Readings = {
    [](std::string_view a, std::string_view b) { return NumericValue(a) < NumericValue(b); },
    [](std::string_view a, std::string_view b) { return a < b; },
    [](std::string_view a, std::string_view b) { return a.size() != b.size() ? a.size() < b.size() : a < b; },
};

// How many sequences of a length come before an end, those that equal it among them or not.
int CountBefore(std::string_view end, bool withEqual, int length, Before before) {
    int low = 0;
    int high = SequencesOf(length);
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const std::string sequence = SequenceText(length, middle);
        (withEqual ? !before(end, sequence) : before(sequence, end)) ? low = middle + 1 : high = middle;
    }
    return low;
}

using End = std::optional<std::string_view>;

void AddReading(std::vector<std::pair<int, int>>& held, const End& low, const End& high, int length,
                Before before) {
    const int from = low ? CountBefore(*low, false, length, before) : 0;
    const int to = high ? CountBefore(*high, true, length, before) : SequencesOf(length);
    if (from < to) {
        held.emplace_back(from, to - 1);
    }
}

// Those of one length that an unclear range may hold, each once.
void AddUnclear(std::vector<DigitRange>& ranges, std::size_t position, const Action& action, int length) {
    std::vector<std::pair<int, int>> held;
    for (const Before before : Readings) {
        AddReading(held, action.low, action.high, length, before);
        if (!action.low || !action.high) {
            const auto [low, high] = RangeOf(action);
            AddReading(held, low, high, length, before);
        }
    }
    std::ranges::sort(held);
    bool first = true;
    for (const auto& [low, high] : held) {
        if (!first && low <= ranges.back().high + 1) {
            ranges.back().high = std::max(ranges.back().high, high);
        } else {
            ranges.push_back({position, length, low, high, false});
            first = false;
        }
    }
}

} // namespace

int SequencesOf(int length) { return PowersOfTen[static_cast<std::size_t>(length)]; }

std::string SequenceText(int length, int sequence) {
    std::string text(static_cast<std::size_t>(length), '0');
    for (auto digit = text.rbegin(); sequence > 0; sequence /= 10) {
        *digit++ = static_cast<char>('0' + sequence % 10);
    }
    return text;
}

EntryLength EntryLengthOf(const Settings& settings) {
    const SettingField& rule = SettingFields.front();
    return IsWithin(rule, settings) ? EntryLength{ValueOf(rule, settings), true} : EntryLength{};
}

RangeKind KindOf(const Action& action, int digits) {
    if (!action.low || !action.high || !IsDigits(*action.low) || !IsDigits(*action.high)) {
        return RangeKind::NotDigits;
    }
    if (action.low->size() != action.high->size()) {
        return RangeKind::Lengths;
    }
    if (*action.low > *action.high) {
        return RangeKind::Reversed;
    }
    return action.low->size() > static_cast<std::size_t>(digits) ? RangeKind::TooLong : RangeKind::Clear;
}

std::vector<DigitRange> RangesOf(const std::vector<Action>& actions, int digits) {
    std::vector<DigitRange> ranges;
    ranges.reserve(actions.size());
    for (std::size_t i = 0; i < actions.size(); ++i) {
        const Action& action = actions[i];
        const RangeKind kind = KindOf(action, digits);
        if (kind == RangeKind::Clear) {
            ranges.push_back(
                {i, static_cast<int>(action.low->size()), Value(*action.low), Value(*action.high)});
        }
        for (int length = 1; length <= digits; ++length) {
            if (kind == RangeKind::NotDigits || kind == RangeKind::Lengths) {
                AddUnclear(ranges, i, action, length);
            }
        }
    }
    return ranges;
}

} // namespace KAL_AUTO_Node
