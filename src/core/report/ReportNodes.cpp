#include "report/ReportNodes.h"

#include "calls/Target.h"
#include "diagram/Markup.h"
#include "platform/VisibleText.h"

#include <algorithm>
#include <array>

namespace KAL_AUTO_Node {

namespace {

// Of the holders of references to one node: a list of all menus tells nobody anything.
constexpr std::size_t UseLimit = 100;

bool IsPlainWord(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    });
}

} // namespace

std::string LabelMarkup(std::string_view text, std::size_t limit) {
    return text.empty() ? std::string() : "<bdi>" + Escaped(Shortened(text, limit)) + "</bdi>";
}

std::string SignMarkup(Severity severity) {
    static constexpr std::array<const char*, 3> signs = {"‼", "!", "i"};
    const std::string name = NameOf(severity);
    return "<b class=\"sign " + name + "\" title=\"" + name + "\">" +
           signs.at(static_cast<std::size_t>(severity)) + "</b>";
}

std::string Joined(const std::vector<std::string>& items, std::size_t limit, std::string_view between) {
    const std::size_t count = items.size() > limit + 1 ? limit : items.size();
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += i > 0 ? between : "";
        text += items[i];
    }
    if (count < items.size()) {
        text += between;
        text += "and " + std::to_string(items.size() - count) + " more";
    }
    return text;
}

ReportNodes::ReportNodes(const ReportData& data) : data_(data) {
    std::set<std::string> taken;
    for (const auto& [typeID, name] : data.names.All()) {
        if (IsPlainWord(name) && taken.insert(name).second) {
            words_.emplace(typeID, name);
        }
    }
    for (const auto& [number, node] : data.flow.nodes) {
        placed_.insert({AutoType, number});
    }
    for (const auto& [node, registered] : data.flow.registered) {
        placed_.insert(node);
    }
    for (const auto& [node, references] : data.others) {
        placed_.insert(node);
    }
    for (const auto& [number, file] : data.recordings) {
        placed_.insert({MessageType, number});
    }
    for (const NodeKey& node : placed_) {
        if (!data.IsMenu(node)) {
            listed_[node.typeID].push_back(node.number);
        }
    }
}

std::string ReportNodes::PlaceOf(const NodeKey& node) const {
    if (!placed_.contains(node)) {
        return {};
    }
    const auto word = words_.find(node.typeID);
    return (word != words_.end() ? word->second : "type" + std::to_string(node.typeID)) + '-' +
           std::to_string(node.number);
}

std::string ReportNodes::Link(const NodeKey& node, const std::string& text) const {
    const std::string place = PlaceOf(node);
    return place.empty() ? text : "<a href=\"#" + place + "\">" + text + "</a>";
}

std::string ReportNodes::Told(const NodeKey& node, const std::string& name, bool isNode) const {
    std::string text = Escaped(Shortened(name, LabelLimit));
    if (!isNode) {
        return text;
    }
    if (!placed_.contains(node)) {
        return "<b class=\"missing\">✗ " + text + " is missing</b>";
    }
    const std::string label = LabelMarkup(data_.LabelOf(node));
    return Link(node, text) + (label.empty() ? "" : ' ' + label);
}

std::string ReportNodes::Named(const NodeKey& node) const { return Told(node, data_.names.Text(node), true); }

std::string ReportNodes::Named(const Reference& reference, Slot from) const {
    return Told(reference.Key(), DisplayText(reference, from), RefersToNode(reference.typeID));
}

std::string ReportNodes::Named(const Target& target) const {
    return Told(target.Key(), target.Text(), target.hasNumber && RefersToNode(target.typeID));
}

std::string ReportNodes::UsedFrom(const NodeKey& node) const {
    std::vector<std::string> holders;
    const auto& uses = data_.UsesOf(node);
    for (auto use = uses.begin(); use != uses.end();) {
        const NodeKey holder = use->holder;
        std::vector<std::string> places;
        for (; use != uses.end() && use->holder == holder; ++use) {
            places.push_back(Escaped(Shortened(use->place, LabelLimit)));
        }
        holders.push_back(Link(holder, Escaped(Visible(data_.names.Text(holder)))) + " <small>(" +
                          Joined(places, 8) + ")</small>");
    }
    return Joined(holders, UseLimit);
}

} // namespace KAL_AUTO_Node
