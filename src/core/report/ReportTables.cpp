#include "report/ReportTables.h"

#include "diagram/Markup.h"
#include "platform/Counted.h"
#include "platform/VisibleText.h"
#include "report/MenuSection.h"

#include <string>

namespace KAL_AUTO_Node {

namespace {

// Of what a node of another type leads to.
constexpr std::size_t ReferenceLimit = 100;

// A browser leaves out what nobody looks at, but a table only as a whole.
constexpr std::size_t RowsOfTable = 100;

// A row that the search finds, with the node's name, its label, and what is found of it.
std::string RowHead(const ReportData& data, const ReportNodes& nodes, const NodeKey& node) {
    return "<tr id=\"" + nodes.PlaceOf(node) + "\" data-node><th scope=\"row\" class=\"n\">" +
           Escaped(Visible(data.names.Text(node))) + "</th><td><span class=\"l\">" +
           LabelMarkup(data.LabelOf(node), 300) + "</span>" + FindingsMarkup(data.FindingsOf(node)) + "</td>";
}

std::string ReferencesOf(const ReportData& data, const ReportNodes& nodes, const NodeKey& node) {
    std::vector<std::string> references;
    if (const auto found = data.others.find(node); found != data.others.end()) {
        for (const auto& [place, target] : found->second) {
            references.push_back(Escaped(place) + ": " + nodes.Named(target, Slot::Prompts));
        }
    } else if (node.typeID == AutoType && data.flow.nodes.contains(node.number)) {
        references.emplace_back("the template, from which new menus are made");
    }
    return Joined(references, ReferenceLimit, "<br>");
}

// Rows with those columns, a table for so many; writeRow makes a row of a node.
void WriteTables(const std::vector<int>& numbers, const std::vector<const char*>& columns,
                 const ReportSink& append, const std::function<std::string(int number)>& writeRow) {
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i % RowsOfTable == 0) {
            std::string html = "<table class=\"list\">\n<thead><tr>";
            for (const char* column : columns) {
                html += std::string("<th scope=\"col\">") + column + "</th>";
            }
            append((i > 0 ? "</tbody></table></div>\n<div class=\"part\">" : "<div class=\"part\">") + html +
                   "</tr></thead>\n<tbody>\n");
        }
        append(writeRow(numbers[i]));
    }
    append("</tbody></table></div>\n");
}

} // namespace

FindingsByFault ByFault(const ReportData& data) {
    FindingsByFault all;
    for (const auto& [holder, findings] : data.findings) {
        for (const Finding& finding : findings) {
            all[finding.fault].push_back(&finding);
        }
    }
    return all;
}

void WriteFindings(const FindingsByFault& findings, const ReportNodes& nodes, const ReportSink& append) {
    append("<section id=\"findings\" class=\"page\">\n<h2>Findings</h2>\n");
    if (findings.empty()) {
        append("<p>Nothing is wrong.</p>\n");
    }
    for (const auto& [fault, all] : findings) {
        const auto& [code, severity, meaning, advice] = RuleOf(fault);
        append("<h3 id=\"found_" + std::to_string(static_cast<int>(fault)) + "\">" + SignMarkup(severity) +
               ' ' + AdviceMarkup(meaning) + " <small>" + Counted(all.size(), NameOf(severity)) + ", " +
               code + "</small></h3>\n<p>" + AdviceMarkup(advice) + "</p>\n<ul>\n");
        for (const Finding* finding : all) {
            std::string line = "<li>" + nodes.Link(finding->holder, Escaped(Visible(finding->Holder()))) +
                               ' ' + LabelMarkup(finding->label);
            for (const std::string& part : {finding->where, finding->subject}) {
                line += part.empty() ? "" : " · " + LabelMarkup(part, 200);
            }
            append(line + "</li>\n");
        }
        append("</ul>\n");
    }
    append("</section>\n");
}

void WriteMessages(const ReportData& data, const ReportNodes& nodes, const ReportSink& append) {
    append("<section id=\"messages\" class=\"page\">\n<h2>Messages</h2>\n");
    const auto messages = nodes.Listed().find(MessageType);
    if (messages == nodes.Listed().end()) {
        append("<p>There are none.</p>\n</section>\n");
        return;
    }
    WriteTables(messages->second, {"Message", "label", "file", "played or referred to by"}, append,
                [&](int number) {
                    const NodeKey node{MessageType, number};
                    const auto file = data.recordings.find(number);
                    return RowHead(data, nodes, node) + "<td>" +
                           (file == data.recordings.end() ? std::string() : LabelMarkup(file->second, 300)) +
                           "</td><td>" + nodes.UsedFrom(node) + "</td></tr>\n";
                });
    append("</section>\n");
}

void WriteOthers(const ReportData& data, const ReportNodes& nodes, const ReportSink& append) {
    append("<section id=\"others\" class=\"page\">\n<h2>Other nodes</h2>\n");
    bool any = false;
    for (const auto& [typeID, numbers] : nodes.Listed()) {
        if (typeID == MessageType) {
            continue;
        }
        any = true;
        const int type = typeID;
        append("<h3>" + Escaped(Visible(data.names.Name(typeID))) + "</h3>\n");
        WriteTables(numbers, {"Node", "label", "refers to", "used by"}, append, [&](int number) {
            const NodeKey node{type, number};
            return RowHead(data, nodes, node) + "<td>" + ReferencesOf(data, nodes, node) + "</td><td>" +
                   nodes.UsedFrom(node) + "</td></tr>\n";
        });
    }
    append(any ? "</section>\n" : "<p>There are none.</p>\n</section>\n");
}

} // namespace KAL_AUTO_Node
