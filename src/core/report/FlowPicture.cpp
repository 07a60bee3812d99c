#include "report/FlowPicture.h"

#include "diagram/DotText.h"
#include "diagram/Graphviz.h"
#include "diagram/Markup.h"
#include "diagram/SectionMap.h"
#include "diagram/Sections.h"
#include "platform/Counted.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

// Of menus; more sections than those make are looked for, not at.
constexpr std::size_t DrawnLimit = 2000;
constexpr std::chrono::seconds TimeLimit{30}; // for a picture

// What of an SVG of dot's the page says by itself, or nobody needs there: names, which another picture has,
// too, and texts that would pop up.
constexpr std::string_view Dropped[] = {
    " id=",
    " class=",
    " font-family=",
    " xlink:title=",
    " text-anchor=\"start\"",
    " font-size=\"10.00\"",
    " xmlns=",
    " xmlns:xlink=",
};

constexpr std::string_view LinkPrefix = " xlink:"; // the page's own language has it without

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// An attribute without the fractions of its numbers, which nobody sees.
void AppendWhole(std::string_view attribute, std::string& part) {
    for (std::size_t at = 0; at < attribute.size(); ++at) {
        if (attribute[at] == '.' && at > 0 && IsDigit(attribute[at - 1])) {
            while (at + 1 < attribute.size() && IsDigit(attribute[at + 1])) {
                ++at;
            }
        } else {
            part += attribute[at];
        }
    }
}

// A tag without what is dropped.
std::string TagOfPage(std::string_view tag) {
    const std::size_t name = std::min(tag.size(), tag.find_first_of(" \n"));
    std::string part(tag.substr(0, name));
    for (tag.remove_prefix(name); !tag.empty();) {
        const std::size_t value = std::min(tag.size(), tag.find('"'));
        const std::size_t end = std::min(tag.size(), tag.find('"', value + 1) + 1);
        const std::string_view attribute = tag.substr(0, end == 0 ? tag.size() : end);
        if (std::ranges::none_of(Dropped,
                                 [&](std::string_view drop) { return attribute.starts_with(drop); })) {
            const bool isLink = attribute.starts_with(LinkPrefix);
            part += isLink ? " " : "";
            AppendWhole(isLink ? attribute.substr(LinkPrefix.size()) : attribute, part);
        }
        tag.remove_prefix(attribute.size());
    }
    return part;
}

// What dot wrote, without a head of its own, as a part of the page: one tag behind the other.
std::string PartOfPage(std::string_view svg) {
    std::string part;
    std::vector<bool> kept; // of the groups that are open, which say something
    svg.remove_prefix(std::min(svg.size(), svg.find("<svg ")));
    while (!svg.empty()) {
        const std::size_t next = std::min(svg.size(), svg.find('>') + 1);
        std::string_view tag = svg.substr(0, next);
        svg.remove_prefix(next);
        std::string_view text = svg.substr(0, svg.find('<'));
        svg.remove_prefix(text.size());
        if (tag.starts_with("<title")) {
            text = {};
        } else if (tag.starts_with("<g ")) {
            std::string group = TagOfPage(tag);
            kept.push_back(group != "<g>");
            part += kept.back() ? group : "";
        } else if (tag == "</g>") {
            part += kept.back() ? "</g>\n" : "";
            kept.pop_back();
        } else if (!tag.starts_with("<!--") && tag != "</title>") {
            part += TagOfPage(tag) + (tag.starts_with("<text") || tag.starts_with("<a") ? "" : "\n");
        }
        part += text == "\n" ? "" : text;
    }
    return part;
}

class Pictures {
  public:
    Pictures(const ReportData& data, const ReportNodes& nodes, const ReportSink& append,
             std::vector<std::string>& warnings, const ReportProgress& progress)
        : data_(data), nodes_(nodes), append_(append), warnings_(warnings), progress_(progress) {
        for (const auto& [number, node] : data.flow.nodes) {
            if (number != TemplateNumber) {
                menus_.insert(number);
            }
        }
    }

    void Write() {
        append_(
            "<section id=\"picture\" class=\"page\">\n<h2>The flow at a glance</h2>\n"
            "<p class=\"legend\">Lines: by digits, from nodes of other types by rows; dashed: by exceptions. "
            "→ the way goes on at that node. Names in bold lead on to menus. ✗ missing, ‼ error, ! warning. "
            "A click on a node goes to what is told of it.</p>\n");
        if (menus_.size() <= DetailLimit) {
            if (!menus_.empty()) {
                Draw(DotText(data_.flow, menus_, true, place_), "The whole flow");
            }
        } else {
            WriteSections();
        }
        append_("</section>\n");
    }

  private:
    void WriteSections() {
        const Outline outline(data_.flow, menus_, TemplateNumber);
        const auto sections = AutoNodesBySection(outline);
        const bool drawn = menus_.size() <= DrawnLimit;
        append_("<p>" + Counted(menus_.size(), "menu") + " in " + Counted(sections.size(), "section") +
                ", as they hang together" +
                (drawn ? "."
                       : "; so many are listed and not drawn. <code>auto-node graph … --section N -o "
                         "FILE.svg</code> draws one.") +
                "</p>\n");
        if (drawn) {
            Draw(SectionMapText(data_.flow, outline), "How the sections lead to one another");
        }
        std::size_t count = 0;
        for (const auto& [first, nodes] : sections) {
            const std::string number = std::to_string(++count);
            const std::string name = "Section " + number;
            WriteSectionHead(number, name, first, nodes.size());
            progress_([&] { return "Drawing section " + number + " of " + std::to_string(sections.size()); });
            if (drawn) {
                Draw(DotText(data_.flow, nodes, false, place_), name);
            } else {
                std::vector<std::string> names;
                names.reserve(nodes.size());
                for (const int menu : nodes) {
                    names.push_back(nodes_.Named(NodeKey{AutoType, menu}));
                }
                append_("<p>" + Joined(names, names.size()) + "</p>\n");
            }
        }
    }

    void WriteSectionHead(const std::string& number, const std::string& name, int first, std::size_t menus) {
        append_("<h3 id=\"section_" + number + "\">" + name + ": " + nodes_.Named(NodeKey{AutoType, first}) +
                " <small>" + Counted(menus, "menu") + "</small></h3>\n");
    }

    void Draw(const std::string& graph, const std::string& name) {
        if (isMissing_) {
            return;
        }
        try {
            const Picture picture = DrawGraph(graph, "svg", TimeLimit, [&](std::chrono::seconds) {
                progress_([&] { return "dot draws: " + name; });
            });
            if (!picture.warnings.empty()) {
                warnings_.push_back(picture.warnings);
            }
            append_("<div class=\"flow\" tabindex=\"0\" role=\"group\" aria-label=\"" + name + "\">\n" +
                    PartOfPage(picture.bytes) + "</div>\n");
        } catch (const RuntimeError& error) {
            isMissing_ = error.Number() == ErrorNumber::StoreNotFound;
            warnings_.push_back(std::string("no picture (") + name + "): " + error.what());
            append_("<p class=\"none\"><b>✗</b> There is no picture here: " + Escaped(Visible(error.what())) +
                    ".</p>\n");
        }
    }

    const ReportData& data_;
    const ReportNodes& nodes_;
    const ReportSink& append_;
    std::vector<std::string>& warnings_;
    const ReportProgress& progress_;
    const PlaceOfNode place_ = [this](const NodeKey& node) { return nodes_.PlaceOf(node); };
    std::set<int> menus_;
    bool isMissing_ = false; // dot
};

} // namespace

void WriteFlowPictures(const ReportData& data, const ReportNodes& nodes, const ReportSink& append,
                       std::vector<std::string>& warnings, const ReportProgress& progress) {
    Pictures(data, nodes, append, warnings, progress).Write();
}

} // namespace KAL_AUTO_Node
