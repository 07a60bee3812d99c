#include "calls/DigitSpace.h"

#include "calls/Target.h"

#include <map>
#include <tuple>

namespace KAL_AUTO_Node {

namespace {

// Actions that come and go, by position.
class Actions {
  public:
    void Change(std::size_t action, bool comes) {
        if (comes) {
            ++ranges_[action];
        } else if (const auto known = ranges_.find(action); --known->second == 0) {
            ranges_.erase(known);
        }
    }

    [[nodiscard]] ActionSet Summary() const {
        ActionSet summary{ranges_.size(), {}};
        auto next = ranges_.begin();
        for (std::size_t i = 0; i < summary.First().size(); ++i) {
            summary.first.at(i) = next++->first;
        }
        return summary;
    }

  private:
    std::map<std::size_t, int> ranges_; // how many of each are here
};

// How many different targets there are, of actions that come and go.
class Targets {
  public:
    explicit Targets(std::size_t count) : uses_(count) {}

    void Change(std::size_t target, bool comes) {
        std::size_t& uses = uses_[target];
        if (comes) {
            different_ += uses++ == 0 ? 1U : 0U;
        } else {
            different_ -= --uses == 0 ? 1U : 0U;
        }
    }

    [[nodiscard]] std::size_t Different() const { return different_; }

  private:
    std::vector<std::size_t> uses_;
    std::size_t different_ = 0;
};

// The targets of actions by numbers from 0, the same for the same.
std::vector<std::size_t> NumberTargets(const std::vector<Action>& actions) {
    std::map<Target, std::size_t> known;
    std::vector<std::size_t> numbers;
    numbers.reserve(actions.size());
    for (const Action& action : actions) {
        numbers.push_back(
            known.try_emplace(TargetOf(action.target, Slot::Actions), known.size()).first->second);
    }
    return numbers;
}

// Goes over the sequences of one length.
class Sweep {
  public:
    Sweep(const std::vector<std::size_t>& targets, int length, bool lengthKnown)
        : targetOf_(targets), leadTargets_(targets.size()), targets_(targets.size()),
          emptyLengths_(lengthKnown ? 1 : length) {
        result_.length = length;
    }

    DigitLength Run(std::vector<RangeEdge>& edges) {
        std::ranges::sort(edges, {}, &RangeEdge::at);
        for (const RangeEdge& edge : edges) {
            End(edge.at);
            Take(edge);
        }
        End(SequencesOf(result_.length));
        return std::move(result_);
    }

  private:
    void Take(const RangeEdge& edge) {
        const auto& [action, length, low, high, clear] = *edge.range;
        if (length > result_.length) {
            waits_.Change(action, edge.begins);
            return;
        }
        const std::size_t target = targetOf_[action];
        targets_.Change(target, edge.begins);
        if (clear) {
            int& holders = clearHolders_.at(static_cast<std::size_t>(length));
            emptyLengths_ += edge.begins ? -(holders++ == 0 ? 1 : 0) : (--holders == 0 ? 1 : 0);
        } else {
            unclear_ += edge.begins ? 1 : -1;
        }
        if (clear && length == result_.length) {
            leads_.Change(action, edge.begins);
            leadTargets_.Change(target, edge.begins);
        } else {
            may_.Change(action, edge.begins);
        }
    }

    // What was there up to here.
    void End(int at) {
        if (at == from_) {
            return;
        }
        const DigitInterval interval{from_,
                                     at - 1,
                                     leads_.Summary(),
                                     may_.Summary(),
                                     waits_.Summary(),
                                     emptyLengths_ > 0,
                                     unclear_ > 0,
                                     leadTargets_.Different(),
                                     targets_.Different()};
        from_ = at;
        auto& intervals = result_.intervals;
        const auto content = [](const DigitInterval& of) {
            return std::tie(of.leads, of.may, of.waits, of.nobody, of.unclear, of.leadTargets, of.targets);
        };
        if (!intervals.empty() && content(intervals.back()) == content(interval)) {
            intervals.back().high = interval.high;
        } else {
            intervals.push_back(interval);
        }
    }

    const std::vector<std::size_t>& targetOf_;
    DigitLength result_;
    Actions leads_;
    Actions may_;
    Actions waits_;
    Targets leadTargets_;
    Targets targets_;
    // Of the lengths that the entry may have once the node has taken it: those of which no action holds it.
    std::array<int, LongestEntry + 1> clearHolders_{};
    int emptyLengths_;
    int unclear_ = 0;
    int from_ = 0;
};

} // namespace

void AddEdges(std::span<const DigitRange> ranges, int length, bool lengthKnown,
              std::vector<RangeEdge>& edges) {
    for (const DigitRange& range : ranges) {
        if (range.length >= length) {
            const int longer = SequencesOf(range.length - length);
            edges.push_back({range.low / longer, true, &range});
            edges.push_back({range.high / longer + 1, false, &range});
        } else if (!lengthKnown) {
            const int shorter = SequencesOf(length - range.length);
            edges.push_back({range.low * shorter, true, &range});
            edges.push_back({(range.high + 1) * shorter, false, &range});
        }
    }
}

std::vector<DigitLength> DigitSpaceOf(const AutoNode& node) {
    const auto [most, known] = EntryLengthOf(node.settings);
    const std::vector<DigitRange> ranges = RangesOf(node.actions, most);
    const std::vector<std::size_t> targets = NumberTargets(node.actions);
    std::vector<DigitLength> lengths;
    std::vector<RangeEdge> edges;
    for (int length = 1; length <= most; ++length) {
        edges.clear();
        AddEdges(ranges, length, known, edges);
        lengths.push_back(Sweep(targets, length, known).Run(edges));
    }
    return lengths;
}

std::vector<SharedDigits> FindSharedDigits(const std::vector<Action>& actions, int digits) {
    std::vector<DigitRange> ranges = RangesOf(actions, digits);
    std::erase_if(ranges, [](const DigitRange& range) { return !range.clear; });
    std::ranges::sort(ranges, [](const DigitRange& a, const DigitRange& b) {
        // By what they hold, so that the same is found wherever the rows stand.
        return std::tie(a.length, a.low, b.high, a.action) < std::tie(b.length, b.low, a.high, b.action);
    });
    std::vector<SharedDigits> shared;
    const DigitRange* furthest = nullptr;
    for (const DigitRange& range : ranges) {
        const bool beside = furthest != nullptr && furthest->length == range.length;
        if (beside && range.low <= furthest->high) {
            shared.push_back({range.action, furthest->action, SequenceText(range.length, range.low),
                              SequenceText(range.length, std::min(range.high, furthest->high))});
        }
        if (!beside || range.high > furthest->high) {
            furthest = &range;
        }
    }
    return shared;
}

} // namespace KAL_AUTO_Node
