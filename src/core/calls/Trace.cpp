#include "calls/Trace.h"

#include "platform/FoldCase.h"
#include "platform/RuntimeError.h"
#include "platform/WholeNumber.h"

#include <algorithm>
#include <set>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

[[noreturn]] void Refuse(const std::string& what) {
    throw RuntimeError(ErrorNumber::InvalidProcedureCall, what);
}

bool IsEntry(std::string_view word) {
    return !word.empty() && std::ranges::all_of(word, [](char c) { return c >= '0' && c <= '9'; });
}

class Walking {
  public:
    explicit Walking(const CallMap& map) : map_(map) {}

    Walk Run(const Menu& start, std::span<const Step> steps) {
        Reach(start.Itself());
        for (const Step& step : steps) {
            stops_ = &walk_.emplace_back(std::exchange(next_, {}));
            reached_.clear();
            step.kind == Step::Kind::Choose ? Choose(step) : Take(step);
        }
        walk_.push_back(std::move(next_));
        return std::move(walk_);
    }

  private:
    void Reach(const Target& target) {
        if (reached_.insert(target).second) {
            next_.push_back({target, map_.MenuOf(target), std::nullopt, map_.EndAt(target)});
        }
    }

    void Take(const Step& step) {
        const auto takes = [&](const Menu& menu) {
            return step.kind != Step::Kind::Enter ||
                   step.digits.size() <= static_cast<std::size_t>(menu.Entries().most);
        };
        const Menu* shorter = nullptr;
        for (Stop& stop : *stops_) {
            if (stop.menu == nullptr) {
                continue;
            }
            if (!takes(*stop.menu)) {
                stop.end = Reason::EntryTooLong;
                shorter = stop.menu;
                continue;
            }
            stop.outcomes = step.kind == Step::Kind::Enter ? stop.menu->Enter(step.digits)
                                                           : stop.menu->Except(step.branch);
            for (const Outcome& outcome : stop.outcomes->ways) {
                Reach(outcome.target);
            }
        }
        if (shorter != nullptr &&
            std::ranges::none_of(*stops_, [](const Stop& stop) { return stop.outcomes.has_value(); })) {
            Refuse(shorter->Itself().Text() + " takes at most " + std::to_string(shorter->Entries().most) +
                   (shorter->Entries().most == 1 ? " digit" : " digits") + ", not " + step.digits);
        }
    }

    // Of the ways that are open the chosen one is left; else one that leads on from a node of another type.
    void Choose(const Step& step) {
        std::string open;
        const auto offer = [&](const Target& target) {
            if (target.Key() == step.node) {
                Reach(target);
            }
            open += (open.empty() ? "" : ", ") + target.Text();
        };
        for (const Stop& stop : *stops_) {
            offer(stop.node);
        }
        if (next_.empty()) {
            for (const Stop& stop : *stops_) {
                for (const OtherWay& way : map_.WaysFrom(stop.node)) {
                    offer(way.target);
                }
            }
        }
        if (next_.empty()) {
            Refuse("No way that is open leads to " + step.text.substr(1) +
                   "; those to choose from: " + (open.empty() ? "none" : open));
        }
    }

    const CallMap& map_;
    Walk walk_;
    std::vector<Stop>* stops_ = nullptr; // where the step is taken
    std::vector<Stop> next_;             // where it leads
    std::set<Target> reached_;           // of them
};

} // namespace

std::optional<int> NodeNumberOf(std::string_view text) { return WholeNumber<std::int16_t>(text); }

std::string StepName(std::size_t branch) { return FoldAscii(Branches.at(branch).label); }

std::vector<Step> StepsOf(std::span<const std::string> words, const TypeNames& names) {
    std::vector<Step> steps;
    for (std::size_t i = 0; i < words.size(); ++i) {
        Step step;
        step.text = words[i];
        const auto branch = std::ranges::find(Branches, FoldCase(step.text),
                                              [](const Branch& rule) { return FoldCase(rule.label); });
        if (IsEntry(step.text) && step.text.size() <= LongestEntry) {
            step.digits = step.text;
        } else if (branch != Branches.end()) {
            step.kind = Step::Kind::Except;
            step.branch = static_cast<std::size_t>(branch - Branches.begin());
            step.text = StepName(step.branch);
        } else if (step.text.starts_with('@')) {
            const auto number = i + 1 < words.size() ? NodeNumberOf(words[i + 1]) : std::nullopt;
            if (!number) {
                Refuse("'" + step.text + "' lacks the number of the node: @TYPE NUMBER");
            }
            step.kind = Step::Kind::Choose;
            step.node = {NodeTypeOf(names.Meant(step.text.substr(1))), *number};
            step.text += ' ' + words[++i];
        } else {
            Refuse("'" + step.text + "' is no step; these are 1 to " + std::to_string(LongestEntry) +
                   " digits, *, #, timeout, invalid, abort and @TYPE NUMBER");
        }
        steps.push_back(std::move(step));
    }
    return steps;
}

Walk WalkFrom(const CallMap& map, int number, std::span<const Step> steps) {
    return Walking(map).Run(map.RequireMenu(number), steps);
}

} // namespace KAL_AUTO_Node
