#include "diagram/Sections.h"

#include "nodes/NodeTypes.h"

#include <algorithm>
#include <functional>

namespace KAL_AUTO_Node {

namespace {

// A picture of more cannot be taken in, and the time for its layout grows faster than their number.
constexpr std::size_t SectionLimit = 30;

// From so many nodes on lines to the same one cover the rest.
constexpr std::size_t ManySources = 5;

} // namespace

Outline::Outline(const CallFlow& flow, const std::set<int>& shown, int first) {
    const auto entries = FindPlaces(flow, shown);
    std::set<NodeKey> reached;
    if (shown.contains(first)) {
        Follow({AutoType, first}, reached);
    }
    std::ranges::for_each(entries, [&](const NodeKey& entry) { Follow(entry, reached); });
    std::ranges::for_each(shown, [&](int number) { Follow({AutoType, number}, reached); });
    Cut();
}

std::vector<NodeKey> Outline::FindPlaces(const CallFlow& flow, const std::set<int>& shown) {
    std::vector<NodeKey> found;
    for (const int number : shown) {
        places_.try_emplace(found.emplace_back(NodeKey{AutoType, number}));
    }
    FindOnwards(flow, shown, std::move(found));
    const auto leadsHere = [&](const auto& other) {
        return !places_.contains(other.first) && std::ranges::any_of(other.second, [&](const Link& link) {
            return places_.contains(link.target.Key());
        });
    };
    std::vector<NodeKey> entries;
    for (;;) {
        const auto entry = std::ranges::find_if(flow.others, leadsHere);
        if (entry == flow.others.end()) {
            return entries;
        }
        // Before those that it leads to.
        entries.insert(entries.begin(), entry->first);
        places_.try_emplace(entry->first);
        FindOnwards(flow, shown, {entry->first});
    }
}

void Outline::FindOnwards(const CallFlow& flow, const std::set<int>& shown, std::vector<NodeKey> found) {
    for (std::size_t next = 0; next < found.size(); ++next) {
        const NodeKey from = found[next];
        for (const Link& link : flow.LinksFrom(from)) {
            const NodeKey to = link.target.Key();
            if (!flow.LeadsOn(link.target) || (to.typeID == AutoType && !shown.contains(to.number))) {
                continue;
            }
            const auto [place, isNew] = places_.try_emplace(to);
            if (isNew) {
                found.push_back(to);
            }
            place->second.comeFrom.insert(from);
            places_[from].onwards.push_back(to);
        }
    }
}

void Outline::Follow(const NodeKey& start, std::set<NodeKey>& reached) {
    if (!reached.insert(start).second) {
        return;
    }
    order_.push_back(start);
    for (std::size_t next = order_.size() - 1; next < order_.size(); ++next) {
        const NodeKey from = order_[next];
        Place& place = places_[from];
        for (const NodeKey& to : place.onwards) {
            if (reached.insert(to).second) {
                order_.push_back(to);
                places_[to].parent = from;
                places_[to].hangs = true;
                place.children.push_back(to);
            }
        }
    }
}

void Outline::Cut() {
    std::map<NodeKey, std::size_t> sizes;
    std::for_each(order_.rbegin(), order_.rend(), [&](const NodeKey& node) {
        Place& place = places_[node];
        std::size_t size = 1;
        for (const NodeKey& child : place.children) {
            size += sizes[child];
        }
        // The largest go first, so that few are cut off.
        std::ranges::sort(place.children, std::greater(), [&](const NodeKey& child) { return sizes[child]; });
        for (auto child = place.children.begin(); size > SectionLimit; ++child) {
            places_[*child].hangs = false;
            size -= sizes[*child];
        }
        sizes[node] = size;
    });
    for (const NodeKey& node : order_) {
        Place& place = places_[node];
        if (place.hangs) {
            place.section = places_[place.parent].section;
        } else {
            place.section = sections_.size();
            sections_.push_back({node, {}});
        }
        sections_[place.section].nodes.push_back(node);
    }
}

bool Outline::IsLine(const NodeKey& from, const NodeKey& to) const {
    const auto source = places_.find(from);
    const auto target = places_.find(to);
    if (from == to || source == places_.end() || target == places_.end() ||
        source->second.section != target->second.section) {
        return false;
    }
    const auto hangsOn = [](const Place& place, const NodeKey& node) {
        return place.hangs && place.parent == node;
    };
    return hangsOn(target->second, from) ||
           (target->second.comeFrom.size() < ManySources && !hangsOn(source->second, to));
}

std::vector<AutoNodes> AutoNodesBySection(const CallFlow& flow, const std::set<int>& shown) {
    return AutoNodesBySection(Outline(flow, shown, TemplateNumber));
}

std::vector<AutoNodes> AutoNodesBySection(const Outline& outline) {
    std::vector<AutoNodes> all;
    for (const Section& section : outline.Sections()) {
        AutoNodes found;
        for (const auto& [typeID, number] : section.nodes) {
            if (typeID == AutoType) {
                found.first = found.nodes.empty() ? number : found.first;
                found.nodes.insert(number);
            }
        }
        if (!found.nodes.empty()) {
            all.push_back(std::move(found));
        }
    }
    return all;
}

} // namespace KAL_AUTO_Node
