#include "calls/CallChanges.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace KAL_AUTO_Node {

namespace {

constexpr std::size_t Sides = 2; // before, after
constexpr std::size_t MostListed = 4;

// What entries lead to, by number: these, then targets.
enum Element : std::size_t { Again, Invalid, Wait, FirstTarget };

// What is there before and after, kept while it comes and goes.
class TwoSets {
  public:
    explicit TwoSets(std::size_t elements) {
        for (auto& uses : uses_) {
            uses.resize(elements);
        }
    }

    void Change(std::size_t side, std::size_t element, bool comes) {
        std::size_t& uses = uses_.at(side)[element];
        const bool was = uses > 0;
        comes ? ++uses : --uses;
        if (was == (uses > 0)) {
            return;
        }
        auto& there = there_.at(side);
        if (was) {
            there.erase(element);
        } else {
            there.insert(element);
        }
        Flip(differing_, element);
        Flip(moved_, {side, element});
    }

    [[nodiscard]] bool Has(std::size_t side, std::size_t element) const {
        return uses_.at(side)[element] > 0;
    }

    [[nodiscard]] const std::set<std::size_t>& There(std::size_t side) const { return there_.at(side); }

    // Those that are there on one side only.
    [[nodiscard]] const std::set<std::size_t>& Differing() const { return differing_; }

    // Whether it is not as it was when this was asked last.
    [[nodiscard]] bool HasMoved() {
        const bool moved = !moved_.empty();
        moved_.clear();
        return moved;
    }

  private:
    template <class Set>
    static void Flip(Set& set, const typename Set::value_type& value) {
        if (const auto [place, added] = set.insert(value); !added) {
            set.erase(place);
        }
    }

    std::array<std::vector<std::size_t>, Sides> uses_;
    std::array<std::set<std::size_t>, Sides> there_;
    std::set<std::size_t> differing_;
    std::set<std::pair<std::size_t, std::size_t>> moved_;
};

struct Edge {
    RangeEdge edge;
    std::size_t side = 0;
};

class Comparison {
  public:
    Comparison(const Menu& before, const Menu& after) : menus_{&before, &after} {
        for (std::size_t side = 0; side < Sides; ++side) {
            const Menu& menu = *menus_.at(side);
            for (std::size_t action = 0; action < menu.Node().actions.size(); ++action) {
                targetOf_.at(side).push_back(Number(menu.ActionTarget(action)));
            }
            invalid_.at(side) = Number(menu.ExceptionTarget(BranchOf(Slot::Invalid)));
        }
        met_.emplace(FirstTarget + targets_.size());
        named_.emplace(FirstTarget + targets_.size());
    }

    std::vector<CallChange> Run() {
        const int longest = std::max(menus_[0]->Entries().most, menus_[1]->Entries().most);
        for (length_ = 1; length_ <= longest; ++length_) {
            RunLength();
        }
        return std::move(changes_);
    }

  private:
    struct Side {
        bool taken = false;                          // entries of the length
        std::array<int, LongestEntry + 1> holders{}; // of clear ranges, by the length that the entry then has
        int emptyLengths = 0;
        int waits = 0;
        int targets = 0;
    };

    std::size_t Number(const Target& target) {
        const auto [known, added] = numbers_.try_emplace(target, targets_.size());
        if (added) {
            targets_.push_back(target);
        }
        return FirstTarget + known->second;
    }

    // What is met, with Invalid as the node that it is; and as it is named.
    void Both(std::size_t side, std::size_t element, bool comes) {
        met_->Change(side, element, comes);
        named_->Change(side, element, comes);
    }

    void Nobody(std::size_t side, bool comes) {
        if (menus_.at(side)->MayAskAgain()) {
            Both(side, Again, comes);
        }
        met_->Change(side, invalid_.at(side), comes);
        named_->Change(side, Invalid, comes);
    }

    void RunLength() {
        std::vector<Edge> edges;
        std::vector<RangeEdge> own;
        for (std::size_t side = 0; side < Sides; ++side) {
            const auto [most, known] = menus_.at(side)->Entries();
            Side& state = sides_.at(side) = {};
            state.taken = length_ <= most;
            if (!state.taken) {
                continue;
            }
            state.emptyLengths = known ? 1 : length_;
            Nobody(side, true);
            own.clear();
            AddEdges(menus_.at(side)->Ranges(), length_, known, own);
            for (const RangeEdge& edge : own) {
                edges.push_back({edge, side});
            }
        }
        std::ranges::sort(edges, {}, [](const Edge& edge) { return edge.edge.at; });
        from_ = 0;
        latest_ = nullptr;
        static_cast<void>(HaveMoved());
        for (const auto& [edge, side] : edges) {
            End(edge.at);
            Take(edge, side);
        }
        End(SequencesOf(length_));
        for (std::size_t side = 0; side < Sides; ++side) {
            if (sides_.at(side).taken) {
                Nobody(side, false);
            }
        }
    }

    void Take(const RangeEdge& edge, std::size_t side) {
        Side& state = sides_.at(side);
        const bool comes = edge.begins;
        const auto& [action, length, low, high, clear] = *edge.range;
        if (length > length_) {
            const int before = state.waits;
            state.waits += comes ? 1 : -1;
            if (!menus_.at(side)->HasTerminator() && (before > 0) != (state.waits > 0)) {
                Both(side, Wait, comes);
            }
            return;
        }
        Both(side, targetOf_.at(side)[action], comes);
        state.targets += comes ? 1 : -1;
        if (!clear) {
            return;
        }
        int& holders = state.holders.at(static_cast<std::size_t>(length));
        const int before = state.emptyLengths;
        state.emptyLengths += comes ? -(holders++ == 0 ? 1 : 0) : (--holders == 0 ? 1 : 0);
        if ((before > 0) != (state.emptyLengths > 0)) {
            Nobody(side, before == 0);
        }
    }

    bool HaveMoved() {
        const bool met = met_->HasMoved();
        return named_->HasMoved() || met;
    }

    // What was there up to here.
    void End(int at) {
        if (at == from_) {
            return;
        }
        const std::pair<std::string, std::string> stretch{SequenceText(length_, from_),
                                                          SequenceText(length_, at - 1)};
        from_ = at;
        const bool moved = HaveMoved();
        if (!Differ()) {
            latest_ = nullptr;
        } else if (latest_ != nullptr && !moved) {
            latest_->back().second = stretch.second;
        } else {
            Tell(stretch);
        }
    }

    [[nodiscard]] bool Differ() const {
        const auto nothingNew = [this](std::size_t side) {
            return !sides_.at(side).taken && sides_.at(1 - side).targets == 0;
        };
        return !met_->Differing().empty() && !named_->Differing().empty() && !nothingNew(0) && !nothingNew(1);
    }

    [[nodiscard]] std::string Text(std::size_t side) const {
        if (!sides_.at(side).taken) {
            return "not taken";
        }
        const auto& there = named_->There(side);
        const bool waits = there.contains(Wait);
        Outcomes outcomes;
        std::size_t targets = 0; // and how many of them are listed
        for (auto element = there.lower_bound(FirstTarget); element != there.end() && targets < MostListed;
             ++element, ++targets) {
            outcomes.ways.push_back({targets_[*element - FirstTarget], Outcome::By::Action, 0});
        }
        const std::size_t others = (waits ? 1U : 0U) + there.count(Again) + there.count(Invalid);
        outcomes.more = there.size() - others - targets;
        if (there.contains(Again)) {
            outcomes.ways.push_back({{}, Outcome::By::Again, 0});
        }
        if (there.contains(Invalid) && !named_->Has(side, invalid_.at(side))) {
            outcomes.ways.push_back({{}, Outcome::By::Exception, BranchOf(Slot::Invalid)});
        }
        return TextOf(outcomes) + (waits ? ", after a wait for more digits" : "");
    }

    // What differs where that does not show.
    [[nodiscard]] std::string Hidden() const {
        std::string text;
        std::size_t listed = 0;
        for (const std::size_t element : named_->Differing()) {
            if (element >= FirstTarget && listed++ < MostListed) {
                const Target& target = targets_[element - FirstTarget];
                text += (text.empty() ? " (" : ", ") + target.Text() + " of type ID " +
                        std::to_string(target.typeID) + (named_->Has(0, element) ? " no more" : " new");
            }
        }
        return text.empty() ? text : text + ')';
    }

    void Tell(const std::pair<std::string, std::string>& stretch) {
        std::pair<std::string, std::string> texts{Text(0), Text(1)};
        if (texts.first == texts.second) {
            texts.second += Hidden();
        }
        const auto [known, added] = told_.try_emplace(texts, changes_.size());
        if (added) {
            changes_.push_back({"entries", {}, texts.first, texts.second, {}});
        }
        latest_ = &changes_[known->second].entries;
        latest_->push_back(stretch);
    }

    std::array<const Menu*, Sides> menus_;
    std::map<Target, std::size_t> numbers_;
    std::vector<Target> targets_;
    std::array<std::vector<std::size_t>, Sides> targetOf_; // of actions
    std::array<std::size_t, Sides> invalid_{};
    std::optional<TwoSets> met_;
    std::optional<TwoSets> named_;
    std::array<Side, Sides> sides_;
    std::vector<CallChange> changes_;
    std::map<std::pair<std::string, std::string>, std::size_t> told_;
    std::vector<std::pair<std::string, std::string>>* latest_ = nullptr; // that may go on
    int length_ = 0;
    int from_ = 0;
};

} // namespace

std::vector<CallChange> CompareEntries(const Menu& before, const Menu& after) {
    return Comparison(before, after).Run();
}

} // namespace KAL_AUTO_Node
