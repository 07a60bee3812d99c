#include "diagram/DotText.h"

#include "diagram/Markup.h"
#include "diagram/Sections.h"
#include "nodes/NodeTypes.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <tuple>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr std::size_t RowLimit = 12;  // lines of a list in a node
constexpr std::size_t StackLimit = 6; // nodes of one type beside a node

// Fills that differ in grey, too. What matters is never told by them alone.
constexpr const char* TitleFill = "#cfe2f3";
constexpr const char* WarningFill = "#fff2cc";
constexpr const char* ErrorFill = "#f4b183";

// How nodes of other types look. Their names are the store's to say, and stand in each of them.
struct TypeShape {
    int typeID;
    const char* shape;
    const char* fill;
};

constexpr TypeShape OtherShape = {0, "box", "#f2f2f2"};

constexpr std::array<TypeShape, 8> TypeShapes = {{
    {MessageType, "note", "#ffffff"},
    {1, "component", "#ececec"}, // commands
    {2, "hexagon", "#e7e0f0"},   // by time
    {3, "hexagon", "#e7e0f0"},   // by date
    {4, "cds", "#ddefe3"},       // transfers
    {6, "tab", "#cfe2f3"},       // menus by digits
    {7, "tab", "#cfe2f3"},       // menus by voice
    {8, "folder", "#ffffff"},    // lists
}};

const TypeShape& ShapeOf(int typeID) {
    const auto known = std::ranges::find(TypeShapes, NodeTypeOf(typeID), &TypeShape::typeID);
    return known == TypeShapes.end() ? OtherShape : *known;
}

// A node of another type with the ways that lead there.
struct Other {
    Reference target;
    std::string name; // markup
    std::vector<Link> links;
};

class Writer {
  public:
    Writer(const CallFlow& flow, const std::set<int>& shown, bool detailed, std::optional<int> emphasized,
           const PlaceOfNode* placeOf)
        : flow_(flow), emphasized_(emphasized), detailed_(detailed), placeOf_(placeOf),
          outline_(flow, shown, emphasized.value_or(TemplateNumber)) {}

    std::string Write() {
        WriteHead();
        std::size_t count = 0;
        for (const Section& section : outline_.Sections()) {
            // A frame keeps what is beside a node from the neighbours'.
            const bool framed = detailed_ || section.nodes.size() > 1;
            if (framed) {
                out_ << "subgraph cluster_" << ++count << " {\ngraph [label=<" << SectionTitle(section)
                     << ">];\n";
            }
            std::ranges::for_each(section.nodes, [&](const NodeKey& node) { WriteNode(node); });
            out_ << (framed ? "}\n" : "");
        }
        out_ << "}\n";
        return out_.str();
    }

  private:
    void WriteHead() {
        constexpr const char* font = "fontname=\"DejaVu Sans,sans-serif\"";
        out_ << "digraph CallFlow {\n"
             << "graph [" << font
             << ", rankdir=LR, ordering=out, nodesep=0.12, ranksep=0.3, pack=16, packmode=\"graph\",\n"
             << "       style=rounded, color=\"#808080\", fontsize=11, labeljust=l, labelloc=t];\n"
             << "node [" << font << ", fontsize=10, margin=\"0.1,0.04\", height=0.3];\n"
             << "edge [" << font << ", fontsize=9, arrowsize=0.7];\n";
        if (placeOf_ == nullptr) {
            WriteTitle();
        }
    }

    // A page has one of its own.
    void WriteTitle() {
        const auto& [config, number] = flow_.partition;
        out_ << "graph [label=<<B>Configuration " << config << ", partition " << number
             << "</B><BR ALIGN=\"LEFT\"/>"
             << "Lines: by digits, from nodes of other types by rows. Dashed: by exceptions. "
             << "→ the way goes on at that node. ✗ and octagons: missing. ‼ error, ! warning."
             << "<BR ALIGN=\"LEFT\"/>Nodes of other types with a name in bold lead on to AUTO nodes; where "
             << "they lead, but for messages, is shown.<BR ALIGN=\"LEFT\"/>>];\n";
    }

    [[nodiscard]] std::string SectionTitle(const Section& section) const {
        const auto count = std::ranges::count(section.nodes, AutoType, &NodeKey::typeID);
        return count < 2 ? std::string()
                         : Title(section.first) + ": " + std::to_string(count) + " AUTO nodes";
    }

    [[nodiscard]] std::string Title(const NodeKey& node) const {
        const auto& [typeID, number] = node;
        if (typeID != AutoType) {
            const auto& [type, label] = flow_.registered.at(node);
            return Markup(type + ' ' + std::to_string(number), label);
        }
        const AutoNode& autoNode = flow_.nodes.at(number);
        return Markup(autoNode.type + ' ' + std::to_string(number), autoNode.label.value_or(""));
    }

    [[nodiscard]] std::string Marked(const std::string& name, const Reference& target) const {
        std::string text = Markup(name, flow_.LabelOf(target));
        return flow_.IsMissing(target) ? "<B>✗ " + text + " is missing</B>" : text;
    }

    // A minus sign would have to be quoted everywhere.
    static std::string Id(const NodeKey& node) {
        const auto& [typeID, number] = node;
        std::string id = typeID == AutoType ? "auto" : "type" + std::to_string(typeID) + '_';
        id += number < 0 ? "_" : "";
        return id += std::to_string(std::abs(number));
    }

    // Where a node stands in the page that the picture is for.
    [[nodiscard]] std::string PagePlace(const NodeKey& node) const {
        return placeOf_ == nullptr ? std::string() : (*placeOf_)(node);
    }

    // And where a way leads that is no line: without a page to the node in the picture.
    [[nodiscard]] std::string WayPlace(const NodeKey& target) const {
        return placeOf_ != nullptr ? PagePlace(target) : outline_.Has(target) ? Id(target) : std::string();
    }

    void WriteNode(const NodeKey& node) {
        std::string ways; // rows for those that are no lines
        std::vector<Link> lines;
        std::vector<Link> others;
        std::map<std::string, std::size_t> counts; // of others that are not shown, by type
        for (Link& link : flow_.LinksFrom(node)) {
            if (flow_.LeadsOn(link.target)) {
                const NodeKey target = link.target.Key();
                if (outline_.IsLine(node, target)) {
                    lines.push_back(std::move(link));
                } else {
                    ways += RowMarkup(EntriesMarkup(link.entries) + " → " +
                                          Markup(link.name, flow_.LabelOf(link.target)),
                                      nullptr, WayPlace(target));
                }
            } else if (detailed_ || flow_.IsMissing(link.target)) {
                others.push_back(std::move(link));
            } else {
                ++counts[link.target.type];
            }
        }
        ways.insert(0, RowMarkup(CountsMarkup(counts)));
        out_ << Id(node) << " [id=\"" << Id(node) << "\", ";
        if (node.typeID == AutoType) {
            WriteAutoNode(node.number, ways);
        } else {
            const TypeShape& shape = ShapeOf(node.typeID);
            out_ << "shape=" << shape.shape << ", style=filled, fillcolor=\"" << shape.fill
                 << R"(", label=<<TABLE BORDER="0" CELLSPACING="0" CELLPADDING="1">)"
                 << RowMarkup("<B>" + Title(node) + "</B>", nullptr, PagePlace(node)) << ways
                 << "</TABLE>>];\n";
        }
        // What is written first comes to lie lowest.
        std::for_each(lines.rbegin(), lines.rend(), [&](const Link& link) {
            WriteLine(node, Id(link.target.Key()), EntriesMarkup(link.entries), link.exception);
        });
        const auto stacks = Stacks(std::move(others));
        std::for_each(stacks.rbegin(), stacks.rend(),
                      [&](const std::vector<Other>& stack) { WriteOther(node, stack); });
    }

    void WriteAutoNode(int number, const std::string& ways) {
        const AutoNode& node = flow_.nodes.at(number);
        out_ << "shape=plain, label=<<TABLE BORDER=\"" << (number == emphasized_ ? 4 : 0)
             << R"(" CELLBORDER="1" CELLSPACING="0" CELLPADDING="4" BGCOLOR="white">)"
             << RowMarkup("<B>" + Title({AutoType, number}) + "</B>", TitleFill,
                          PagePlace({AutoType, number}))
             << (detailed_ ? RowMarkup(SettingsMarkup(node.settings)) : "") << RowMarkup(PromptsMarkup(node))
             << ways << Remarks(number) << "</TABLE>>];\n";
    }

    static std::string SettingsMarkup(const Settings& settings) {
        std::vector<std::string> lines;
        lines.reserve(SettingFields.size() + 1);
        for (const SettingField& rule : SettingFields) {
            lines.push_back(Markup(rule.name, SettingText(rule, settings)));
        }
        lines.push_back(Markup("terminating digit", TerminatingDigitText(settings)));
        return LinesMarkup(lines, lines.size());
    }

    [[nodiscard]] std::string PromptsMarkup(const AutoNode& node) const {
        std::vector<std::string> lines;
        int position = 0;
        for (const auto& [sequence, target] : node.prompts) {
            ++position;
            if (detailed_ || flow_.IsMissing(target)) {
                lines.push_back(std::to_string(position) + ". " +
                                Marked(DisplayText(target, Slot::Prompts), target));
            }
        }
        return LinesMarkup(lines, RowLimit);
    }

    static std::string CountsMarkup(const std::map<std::string, std::size_t>& counts) {
        std::vector<std::string> lines;
        lines.reserve(counts.size());
        for (const auto& [type, count] : counts) {
            lines.push_back(std::to_string(count) + " × " + Markup(type));
        }
        return LinesMarkup(lines, RowLimit);
    }

    [[nodiscard]] std::string Remarks(int number) const {
        std::string rows;
        if (const auto found = flow_.remarks.find(number); found != flow_.remarks.end()) {
            for (const auto& [error, text] : found->second) {
                rows += RowMarkup((error ? "<B>‼</B> " : "<B>!</B> ") + Markup(text),
                                  error ? ErrorFill : WarningFill);
            }
        }
        return rows;
    }

    // What a node leads to of other types, each by itself, but much of one type in one stack: without what
    // exceptions lead to, whose lines would end at the stack and tell nothing.
    [[nodiscard]] std::vector<std::vector<Other>> Stacks(std::vector<Link> links) const {
        std::vector<Other> others;
        for (Link& link : links) {
            auto known = std::ranges::find(others, link.target, &Other::target);
            if (known == others.end()) {
                others.push_back({link.target, Marked(link.name, link.target), {}});
                known = std::prev(others.end());
            }
            known->links.push_back(std::move(link));
        }
        const auto kindOf = [&](const Other& other) {
            const bool alone = std::ranges::any_of(other.links, &Link::exception);
            return std::tuple(other.target.typeID, flow_.IsMissing(other.target),
                              alone ? std::optional(other.target.number) : std::nullopt);
        };
        std::map<decltype(kindOf(others.front())), std::size_t> sizes;
        std::ranges::for_each(others, [&](const Other& other) { ++sizes[kindOf(other)]; });
        std::vector<std::vector<Other>> stacks;
        std::map<decltype(kindOf(others.front())), std::size_t> positions; // of stacks of more than one
        for (Other& other : others) {
            const auto kind = kindOf(other);
            const auto [position, isNew] = positions.try_emplace(kind, stacks.size());
            if (isNew || sizes[kind] <= StackLimit + 1) {
                stacks.emplace_back();
                position->second = stacks.size() - 1;
            }
            stacks[position->second].push_back(std::move(other));
        }
        return stacks;
    }

    // One, or a stack of them.
    void WriteOther(const NodeKey& from, const std::vector<Other>& others) {
        const std::string id = Id(from) + '_' + std::to_string(++others_);
        const Reference& target = others.front().target;
        const TypeShape& shape = ShapeOf(target.typeID);
        std::vector<std::string> names;
        std::array<std::vector<std::string>, 2> entries; // by digits, by exceptions
        for (const Other& other : others) {
            names.push_back(other.name);
            for (const Link& link : other.links) {
                auto& all = entries.at(link.exception ? 1 : 0);
                all.insert(all.end(), link.entries.begin(), link.entries.end());
            }
        }
        out_ << id << " [label=<" << LinesMarkup(names, StackLimit) << ">, ";
        if (const std::string place = others.size() == 1 ? PagePlace(target.Key()) : ""; !place.empty()) {
            out_ << "href=\"#" << place << "\", ";
        }
        if (flow_.IsMissing(target)) {
            out_ << "shape=octagon, style=\"filled,dashed\", penwidth=2, fillcolor=\"" << ErrorFill
                 << "\"];\n";
        } else {
            out_ << "shape=" << (others.size() > 1 ? "box3d" : shape.shape) << ", style=filled, fillcolor=\""
                 << shape.fill << "\"];\n";
        }
        for (const bool exception : {false, true}) {
            if (const auto& all = entries.at(exception ? 1 : 0); !all.empty()) {
                WriteLine(from, id, EntriesMarkup(all), exception);
            }
        }
    }

    // The text is a node on the line: dot loses the labels of lines where it packs sections.
    void WriteLine(const NodeKey& from, const std::string& to, const std::string& text, bool exception) {
        const std::string id = "way" + std::to_string(++ways_);
        const char* style = exception ? " [style=dashed" : " [style=solid";
        out_ << id << " [shape=plain, fontsize=9, label=<" << text << ">];\n"
             << Id(from) << " -> " << id << style << ", arrowhead=none];\n"
             << id << " -> " << to << style << "];\n";
    }

    const CallFlow& flow_;
    std::optional<int> emphasized_;
    bool detailed_;
    const PlaceOfNode* placeOf_; // none where the picture is for no page
    Outline outline_;
    std::ostringstream out_;
    int others_ = 0;
    int ways_ = 0;
};

} // namespace

std::string DotText(const CallFlow& flow, const std::set<int>& shown, std::optional<int> emphasized) {
    return Writer(flow, shown, shown.size() <= DetailLimit, emphasized, nullptr).Write();
}

std::string DotText(const CallFlow& flow, const std::set<int>& shown, bool detailed,
                    const PlaceOfNode& placeOf) {
    return Writer(flow, shown, detailed, std::nullopt, &placeOf).Write();
}

} // namespace KAL_AUTO_Node
