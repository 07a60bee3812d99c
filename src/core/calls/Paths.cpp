#include "calls/Paths.h"

#include "calls/Trace.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <unordered_map>

namespace KAL_AUTO_Node {

namespace {

constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();

// A step from one node to another: an entry, an exception after all entries, or a choice.
struct Edge {
    std::uint32_t from = None;
    std::uint32_t to = None;
    int length = 0; // of the entry; 0 for an exception, -1 for a choice
    int value = 0;
    bool certain = false;

    [[nodiscard]] bool IsSimplerThan(const Edge& other) const {
        const auto rank = [](const Edge& edge) {
            return std::pair(edge.length > 0 ? edge.length : LongestEntry + 1, edge.value);
        };
        return rank(*this) < rank(other);
    }
};

class Graph {
  public:
    Graph(const CallMap& map, const TypeNames& names) : names_(names) {
        for (const auto& [number, menu] : map.menus) {
            AddMenu(menu);
        }
        for (const auto& [node, ways] : map.others) {
            for (const OtherWay& way : ways) {
                edges_.push_back({Find(node), Find(way.target.Key()), -1, 0, false});
            }
        }
        into_.resize(nodes_.size());
        for (std::uint32_t edge = 0; edge < edges_.size(); ++edge) {
            into_[edges_[edge].to].push_back(edge);
        }
    }

    // For each node the edge that leads on to another by the fewest steps; none where there is no way.
    struct Ways {
        std::vector<std::uint32_t> next;
        std::vector<std::uint32_t> length; // in edges
    };

    [[nodiscard]] Ways WaysTo(const NodeKey& node, bool certain) const {
        Ways ways{std::vector(nodes_.size(), None), std::vector(nodes_.size(), None)};
        const auto known = numbers_.find(Packed(node));
        if (known == numbers_.end()) {
            return ways;
        }
        std::vector<std::uint32_t> reached = {known->second};
        ways.length[known->second] = 0;
        for (std::size_t i = 0; i < reached.size(); ++i) {
            for (const std::uint32_t number : into_[reached[i]]) {
                const Edge& edge = edges_[number];
                if (certain && !edge.certain) {
                    continue;
                }
                const std::uint32_t length = ways.length[reached[i]] + 1;
                std::uint32_t& next = ways.next[edge.from];
                if (ways.length[edge.from] == None) {
                    ways.length[edge.from] = length;
                    next = number;
                    reached.push_back(edge.from);
                } else if (ways.length[edge.from] == length && edge.IsSimplerThan(edges_[next])) {
                    next = number;
                }
            }
        }
        return ways;
    }

    [[nodiscard]] std::optional<std::uint32_t> Length(const Ways& ways, int from) const {
        const auto known = numbers_.find(Packed({AutoType, from}));
        return known == numbers_.end() || ways.length[known->second] == None
                   ? std::nullopt
                   : std::optional(ways.length[known->second]);
    }

    [[nodiscard]] std::vector<PathStep> Path(const Ways& ways, int from) const {
        std::vector<PathStep> path;
        for (std::uint32_t node = numbers_.at(Packed({AutoType, from})); ways.next[node] != None;) {
            const Edge& edge = edges_[ways.next[node]];
            node = edge.to;
            path.push_back({StepText(edge), nodes_[node]});
        }
        return path;
    }

  private:
    [[nodiscard]] static std::int64_t Packed(const NodeKey& node) {
        return std::int64_t{node.typeID} << 32 | static_cast<std::uint32_t>(node.number);
    }

    std::uint32_t Find(const NodeKey& node) {
        const auto [known, added] =
            numbers_.try_emplace(Packed(node), static_cast<std::uint32_t>(nodes_.size()));
        if (added) {
            nodes_.push_back(node);
        }
        return known->second;
    }

    [[nodiscard]] std::string StepText(const Edge& edge) const {
        if (edge.length > 0) {
            return SequenceText(edge.length, edge.value);
        }
        if (edge.length == 0) {
            return StepName(static_cast<std::size_t>(edge.value));
        }
        return '@' + names_.Text(nodes_[edge.to]);
    }

    void AddMenu(const Menu& menu) {
        const std::uint32_t from = Find(menu.Itself().Key());
        found_.clear();
        const auto add = [&](const Target& target, int length, int value, bool certain) {
            if (target.hasNumber) {
                found_.push_back({from, Find(target.Key()), length, value, certain});
            }
        };
        for (const DigitRange& range : menu.Ranges()) {
            add(menu.ActionTarget(range.action), range.length, range.low, false);
        }
        for (const auto& [length, intervals] : DigitSpaceOf(menu.Node())) {
            for (const DigitInterval& interval : intervals) {
                // What is certain has one target and does not ask again.
                if (interval.targets > 1 || (interval.nobody && menu.MayAskAgain())) {
                    continue;
                }
                if (const Outcomes outcomes = menu.Enter(length, interval); outcomes.IsCertain()) {
                    add(outcomes.ways.front().target, length, interval.low, true);
                }
            }
        }
        for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
            const Outcomes outcomes = menu.Except(branch);
            for (const Outcome& outcome : outcomes.ways) {
                add(outcome.target, 0, static_cast<int>(branch), outcomes.IsCertain());
            }
        }
        // The simplest of those to each node, and the simplest certain one.
        std::ranges::sort(found_, [](const Edge& a, const Edge& b) {
            return a.to != b.to ? a.to < b.to : a.certain != b.certain ? a.certain : a.IsSimplerThan(b);
        });
        for (std::size_t i = 0; i < found_.size(); ++i) {
            if (i == 0 || found_[i].to != found_[i - 1].to || found_[i].certain != found_[i - 1].certain) {
                edges_.push_back(found_[i]);
            }
        }
    }

    const TypeNames& names_;
    std::unordered_map<std::int64_t, std::uint32_t> numbers_; // of nodes, by their keys
    std::vector<NodeKey> nodes_;
    std::vector<Edge> edges_;
    std::vector<std::vector<std::uint32_t>> into_; // edges, by the node to which they lead
    std::vector<Edge> found_;                      // of one menu
};

} // namespace

std::vector<PathsFrom> FindPaths(const CallMap& map, const TypeNames& names, const NodeKey& to,
                                 std::optional<int> from) {
    const std::vector<int> starts = from ? std::vector{map.RequireMenu(*from).Number()} : map.entries;
    const Graph graph(map, names);
    const Graph::Ways certain = graph.WaysTo(to, true);
    const Graph::Ways possible = graph.WaysTo(to, false);
    std::vector<PathsFrom> paths;
    for (const int start : starts) {
        const auto least = graph.Length(possible, start);
        if (!least) {
            continue;
        }
        PathsFrom& found = paths.emplace_back();
        found.from = start;
        const auto leastCertain = graph.Length(certain, start);
        if (leastCertain) {
            found.certain = graph.Path(certain, start);
        }
        if (leastCertain != least) {
            found.possible = graph.Path(possible, start);
        }
    }
    return paths;
}

} // namespace KAL_AUTO_Node
