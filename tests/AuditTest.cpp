#include "audit/DigitSpace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace KAL_AUTO_Node {
namespace {

constexpr unsigned MostActions = 6;

ActionSet SetOf(unsigned bits) {
    ActionSet set;
    for (unsigned i = 0; i < MostActions; ++i) {
        if ((bits >> i & 1U) != 0 && ++set.count <= set.first.size()) {
            set.first[set.count - 1] = i;
        }
    }
    return set;
}

// Every sequence of random nodes, one by one: which actions hold it, and which hold a longer one that begins
// with it.
TEST(DigitSpace, TellsOfEverySequenceWhatHoldsItAndWhatCouldFollow) {
    std::mt19937 random(14);
    const auto upTo = [&](int last) { return std::uniform_int_distribution<>(0, last)(random); };
    for (int node = 0; node < 3000; ++node) {
        const int digits = 1 + std::min(upTo(4), upTo(4));
        std::vector<std::vector<unsigned>> holds(1); // bits of actions, by length and sequence
        for (int length = 1; length <= digits; ++length) {
            holds.emplace_back(static_cast<std::size_t>(std::pow(10, length)));
        }
        auto waits = holds;
        std::vector<Action> actions;
        for (unsigned i = 0; i < MostActions; ++i) {
            const DigitLength form{1 + upTo(digits), {}}; // one digit more than the node takes, too
            const int last = static_cast<int>(std::pow(10, form.length)) - 1;
            const int low = upTo(last);
            const int high = upTo(2) == 0 ? low : upTo(last);
            actions.push_back({0, {}, form.Text(low), form.Text(high)});
            if (upTo(9) == 0) {
                actions.back().high.reset();
                continue;
            }
            for (int sequence = low; form.length <= digits && sequence <= high; ++sequence) {
                auto length = static_cast<std::size_t>(form.length);
                auto at = static_cast<std::size_t>(sequence);
                holds[length][at] |= 1U << i;
                while (--length > 0) {
                    waits[length][at /= 10] |= 1U << i;
                }
            }
        }
        const auto lengths = DigitSpaceOf(actions, digits);
        ASSERT_EQ(lengths.size(), static_cast<std::size_t>(digits));
        bool shared = false;
        for (const DigitLength& length : lengths) {
            const auto& held = holds[static_cast<std::size_t>(length.length)];
            const auto& awaited = waits[static_cast<std::size_t>(length.length)];
            std::size_t next = 0;
            for (const DigitInterval& interval : length.intervals) {
                ASSERT_EQ(static_cast<std::size_t>(interval.low), next);
                for (; next <= static_cast<std::size_t>(interval.high); ++next) {
                    ASSERT_TRUE(interval.leads == SetOf(held[next]) && interval.waits == SetOf(awaited[next]))
                        << "node " << node << ", " << length.Text(static_cast<int>(next));
                }
                shared = shared || interval.leads.count > 1;
            }
            ASSERT_EQ(next, held.size());
        }
        EXPECT_EQ(SharesDigits(actions, digits), shared);
    }
}

} // namespace
} // namespace KAL_AUTO_Node
