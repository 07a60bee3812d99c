#include "diagram/SectionMap.h"

#include "diagram/Markup.h"
#include "nodes/NodeTypes.h"

#include <map>
#include <sstream>
#include <utility>

namespace KAL_AUTO_Node {

std::string SectionMapText(const CallFlow& flow, const Outline& outline) {
    std::ostringstream out;
    out << "digraph Sections {\ngraph [rankdir=LR, nodesep=0.15, ranksep=0.6];\n"
           "node [fontname=\"DejaVu Sans,sans-serif\", fontsize=10, shape=box, style=filled, "
           "fillcolor=\"#cfe2f3\", margin=\"0.1,0.05\", height=0.3];\n"
           "edge [fontname=\"DejaVu Sans,sans-serif\", fontsize=9, arrowsize=0.7];\n";
    std::map<NodeKey, std::size_t> sectionOf;
    std::size_t count = 0;
    for (const AutoNodes& section : AutoNodesBySection(outline)) {
        ++count;
        for (const int number : section.nodes) {
            sectionOf[{AutoType, number}] = count;
        }
        const AutoNode& first = flow.nodes.at(section.first);
        out << "s" << count << " [href=\"#section_" << count << "\", label=<<B>" << count << "</B> "
            << Markup(NodeKey{AutoType, section.first}.Text(first.type), first.label.value_or("")) << "<BR/>"
            << section.nodes.size() << (section.nodes.size() == 1 ? " menu" : " menus") << ">];\n";
    }
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> ways;
    for (const auto& [node, section] : sectionOf) {
        for (const Link& link : flow.LinksFrom(node)) {
            const auto to = sectionOf.find(link.target.Key());
            if (to != sectionOf.end() && to->second != section) {
                ++ways[{section, to->second}];
            }
        }
    }
    for (const auto& [ends, number] : ways) {
        out << "s" << ends.first << " -> s" << ends.second << " [label=\"" << number << "\"];\n";
    }
    out << "}\n";
    return out.str();
}

} // namespace KAL_AUTO_Node
