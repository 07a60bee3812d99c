#include "calls/Flow.h"

#include "nodes/Identity.h"

#include <algorithm>
#include <iterator>

namespace KAL_AUTO_Node {

void Flow::Add(int number, const AutoNode& node) {
    bool leadsOn = false;
    const auto note = [&](const Reference& target, bool leads) {
        const bool isAuto = target.typeID == AutoType;
        if (isAuto && target.number != number) {
            referredTo_.insert(target.number);
        }
        if (leads && isAuto) {
            edges_.emplace_back(number, target.number);
        } else if (leads && target.typeID != NumberlessType && target.typeID != NumberlessExceptionType) {
            leadsOn = true;
        }
    };
    for (const Prompt& prompt : node.prompts) {
        note(prompt.target, false);
    }
    for (const Action& action : node.actions) {
        note(action.target, true);
    }
    for (const Reference& branch : node.branches) {
        note(branch, true);
    }
    nodes_[number] = leadsOn;
}

std::vector<int> Flow::WithoutWayOut() const {
    std::unordered_map<int, bool> out = nodes_;
    std::unordered_multimap<int, int> back; // to, from
    for (const auto& [from, to] : edges_) {
        if (nodes_.contains(to)) {
            back.emplace(to, from);
        } else {
            out[from] = true;
        }
    }
    std::vector<int> reached;
    for (const auto& [number, leadsOut] : out) {
        if (leadsOut) {
            reached.push_back(number);
        }
    }
    while (!reached.empty()) {
        const auto [first, last] = back.equal_range(reached.back());
        reached.pop_back();
        std::for_each(first, last, [&](const auto& edge) {
            if (!std::exchange(out[edge.second], true)) {
                reached.push_back(edge.second);
            }
        });
    }
    std::erase_if(out, [](const auto& node) { return node.second; });
    std::vector<int> without;
    std::ranges::transform(out, std::back_inserter(without), [](const auto& node) { return node.first; });
    return without;
}

std::vector<int> Flow::Unreferenced() const {
    std::vector<int> unreferenced;
    for (const auto& [number, leadsOn] : nodes_) {
        if (!referredTo_.contains(number)) {
            unreferenced.push_back(number);
        }
    }
    return unreferenced;
}

std::vector<int> Flow::Entries() const {
    std::vector<int> entries = Unreferenced();
    std::ranges::copy_if(ledTo_, std::back_inserter(entries),
                         [this](int number) { return nodes_.contains(number); });
    std::erase(entries, TemplateNumber);
    std::ranges::sort(entries);
    entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
    return entries;
}

} // namespace KAL_AUTO_Node
