#include "diagram/Sections.h"

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
    for (const int number : shown) {
        places_.try_emplace(number);
    }
    for (const int from : shown) {
        for (const Link& link : LinksOf(flow.nodes.at(from))) {
            if (flow.LeadsOn(link.target) && shown.contains(link.target.number)) {
                places_[link.target.number].comeFrom.insert(from);
            }
        }
    }
    std::set<int> reached;
    const auto follow = [&](int start) {
        if (!reached.insert(start).second) {
            return;
        }
        order_.push_back(start);
        for (std::size_t next = order_.size() - 1; next < order_.size(); ++next) {
            const int from = order_[next];
            for (const Link& link : LinksOf(flow.nodes.at(from))) {
                const int to = link.target.number;
                if (flow.LeadsOn(link.target) && shown.contains(to) && reached.insert(to).second) {
                    order_.push_back(to);
                    places_[to].parent = from;
                    places_[to].hangs = true;
                    places_[from].children.push_back(to);
                }
            }
        }
    };
    if (shown.contains(first)) {
        follow(first);
    }
    std::ranges::for_each(shown, follow);
    Cut();
}

void Outline::Cut() {
    std::unordered_map<int, std::size_t> sizes;
    std::for_each(order_.rbegin(), order_.rend(), [&](int number) {
        Place& place = places_[number];
        std::size_t size = 1;
        for (const int child : place.children) {
            size += sizes[child];
        }
        // The largest go first, so that few are cut off.
        std::ranges::sort(place.children, std::greater(), [&](int child) { return sizes[child]; });
        for (auto child = place.children.begin(); size > SectionLimit; ++child) {
            places_[*child].hangs = false;
            size -= sizes[*child];
        }
        sizes[number] = size;
    });
    for (const int number : order_) {
        Place& place = places_[number];
        if (place.hangs) {
            place.section = places_[place.parent].section;
        } else {
            place.section = sections_.size();
            sections_.push_back({number, {}});
        }
        sections_[place.section].numbers.push_back(number);
    }
}

bool Outline::IsLine(int from, int to) const {
    const auto source = places_.find(from);
    const auto target = places_.find(to);
    if (from == to || source == places_.end() || target == places_.end() ||
        source->second.section != target->second.section) {
        return false;
    }
    return (target->second.hangs && target->second.parent == from) ||
           target->second.comeFrom.size() < ManySources;
}

} // namespace KAL_AUTO_Node
