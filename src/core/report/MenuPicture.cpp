#include "report/MenuPicture.h"

#include "diagram/Markup.h"
#include "platform/VisibleText.h"

#include <algorithm>
#include <vector>

namespace KAL_AUTO_Node {

namespace {

// More than a page shows beside one another; the tables have all of them.
constexpr std::size_t BoxLimit = 12;

constexpr std::size_t TextLimit = 60; // characters of a label
constexpr std::size_t KeyLimit = 24;  // over a line

// A node beside the menu, and the keys or places between the two.
struct Beside {
    NodeKey node;
    std::string name;
    std::string label;
    bool isNode = true;
    bool missing = false;
    bool keyed = false; // not by exceptions alone
    std::string keys;

    void AddKeys(const std::string& more) { keys += (keys.empty() ? "" : ", ") + more; }
};

using AllBeside = std::vector<Beside>;

Beside& Of(AllBeside& all, const NodeKey& node, const std::string& name) {
    const auto known =
        std::ranges::find_if(all, [&](const Beside& one) { return one.node == node && one.name == name; });
    return known != all.end() ? *known : all.emplace_back(Beside{node, name, {}, true, false, false, {}});
}

AllBeside Before(const ReportData& data, const NodeKey& menu) {
    AllBeside before;
    for (const NodeUse& use : data.UsesOf(menu)) {
        if (use.holder != menu) {
            Beside& beside = Of(before, use.holder, data.names.Text(use.holder));
            beside.label = data.LabelOf(use.holder);
            beside.keyed = true;
            beside.AddKeys(use.place);
        }
    }
    return before;
}

AllBeside After(const ReportData& data, const NodeKey& menu) {
    AllBeside after;
    for (const Link& link : data.flow.LinksFrom(menu)) {
        Beside& beside = Of(after, link.target.Key(), link.name);
        beside.label = data.flow.LabelOf(link.target);
        beside.isNode = RefersToNode(link.target.typeID);
        beside.missing = data.flow.IsMissing(link.target);
        beside.keyed = beside.keyed || !link.exception;
        for (const std::string& entry : link.entries) {
            beside.AddKeys(entry);
        }
    }
    return after;
}

const char* KindOf(const Beside& beside) {
    return beside.missing                      ? "gone"
           : beside.node.typeID == AutoType    ? "auto"
           : beside.node.typeID == MessageType ? "msg"
                                               : "other";
}

std::string Box(const ReportNodes& nodes, const Beside& beside) {
    const std::string place = beside.isNode ? nodes.PlaceOf(beside.node) : "";
    const std::string label = beside.missing ? " is missing" : ' ' + LabelMarkup(beside.label, TextLimit);
    const std::string tag = place.empty() ? "span" : "a";
    return '<' + tag + " class=\"" + KindOf(beside) + '"' + (place.empty() ? "" : " href=\"#" + place + '"') +
           "><b>" + (beside.missing ? "✗ " : "") + Escaped(Shortened(beside.name, TextLimit)) + "</b>" +
           (label == " " ? "" : label) + "</" + tag + '>';
}

// One side, as a list.
std::string Side(const ReportNodes& nodes, const AllBeside& all, const std::string& kind) {
    if (all.empty()) {
        return {};
    }
    const std::size_t shown = all.size() > BoxLimit + 1 ? BoxLimit : all.size();
    std::string html = "<ul class=\"" + kind + "\">";
    for (std::size_t i = 0; i < shown; ++i) {
        const std::string keys = std::string(all[i].keyed ? "<i>" : "<i class=\"dash\">") +
                                 Escaped(Shortened(all[i].keys, KeyLimit)) + "</i>";
        const std::string box = Box(nodes, all[i]);
        html += "<li>" + (kind == "in" ? box + keys : keys + box) + "</li>";
    }
    if (shown < all.size()) {
        const std::string more = "<span>and " + std::to_string(all.size() - shown) + " more</span>";
        html += "<li>" + (kind == "in" ? more + "<i></i>" : "<i></i>" + more) + "</li>";
    }
    return html += "</ul>";
}

} // namespace

std::string MenuPicture(const ReportData& data, const ReportNodes& nodes, int number) {
    const NodeKey menu{AutoType, number};
    const std::string name = Escaped(Visible(data.names.Text(menu)));
    return "<div class=\"star\" role=\"group\" aria-label=\"Surroundings of " + name + "\">" +
           Side(nodes, Before(data, menu), "in") + "<p class=\"self\"><b>" + name + "</b> " +
           LabelMarkup(data.LabelOf(menu), TextLimit) + "</p>" + Side(nodes, After(data, menu), "out") +
           "</div>\n";
}

} // namespace KAL_AUTO_Node
