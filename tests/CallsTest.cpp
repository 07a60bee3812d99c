#include "calls/DigitSpace.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace KAL_AUTO_Node
