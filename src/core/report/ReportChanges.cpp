#include "report/ReportChanges.h"

#include "diagram/Markup.h"
#include "history/Changes.h"
#include "history/History.h"
#include "nodes/Overview.h"
#include "nodes/PartitionReader.h"
#include "platform/Counted.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <optional>

namespace KAL_AUTO_Node {

namespace {

constexpr std::size_t WordsLimit = 400; // characters of a line

std::optional<AutoNode> NodeNow(const ReportData& data, int number) {
    const auto found = data.flow.nodes.find(number);
    return found == data.flow.nodes.end() ? std::nullopt : std::optional(found->second);
}

std::string LabelOf(const std::optional<AutoNode>& before, const std::optional<AutoNode>& now) {
    return (now ? now->label : before ? before->label : std::nullopt).value_or("");
}

// Of a node that is not an AUTO node.
struct OtherNode {
    std::string label;
    std::string file; // of a message

    [[nodiscard]] std::string ChangesTo(const OtherNode& after) const {
        std::string words;
        const auto add = [&](const char* what, const std::string& from, const std::string& to) {
            if (from != to) {
                words += (words.empty() ? "" : ", ") + (what + (" \"" + from)) + "\" → \"" + to + '"';
            }
        };
        add("label", label, after.label);
        add("file", file, after.file);
        return words;
    }
};

std::map<NodeKey, OtherNode> OthersOf(DataBase& dataBase, Partition partition) {
    std::map<NodeKey, OtherNode> others;
    ReadRegister(dataBase, partition, [&](const NodeKey& node, std::string_view, std::string_view label) {
        if (node.typeID != AutoType) {
            others[node].label = label;
        }
    });
    for (ResultSet rows = dataBase.Query(Command::Get_Recordings, {partition, MessageType}); !rows.AtEnd();
         rows.MoveNext()) {
        others[{MessageType, rows.Number("NodeNumber")}].file = rows.Field("VexoFilename").value_or("");
    }
    return others;
}

std::map<NodeKey, OtherNode> OthersOf(const ReportData& data) {
    std::map<NodeKey, OtherNode> others;
    for (const auto& [node, registered] : data.flow.registered) {
        if (node.typeID != AutoType) {
            others[node].label = registered.label;
        }
    }
    for (const auto& [number, file] : data.recordings) {
        others[{MessageType, number}].file = file;
    }
    return others;
}

void CompareOthers(ReportChanges& changes, const std::map<NodeKey, OtherNode>& before,
                   const std::map<NodeKey, OtherNode>& after) {
    std::map<NodeKey, std::string> words;
    for (const auto& [node, was] : before) {
        const auto now = after.find(node);
        words[node] = now == after.end() ? "the node is gone" : was.ChangesTo(now->second);
    }
    for (const auto& [node, now] : after) {
        words.try_emplace(node, "the node is new");
    }
    for (auto& [node, text] : words) {
        if (!text.empty()) {
            changes.others.emplace_back(node, std::move(text));
        }
    }
}

} // namespace

const NodeChange* ReportChanges::Of(int number) const {
    const auto found = nodes.find(number);
    return found == nodes.end() ? nullptr : &found->second;
}

ReportChanges ChangesSince(DataBase& dataBase, Partition partition, const ReportData& data,
                           const std::string& since) {
    ReportChanges changes;
    changes.from = "since " + LocalTime(since);
    History history(dataBase);
    std::set<int> keptBefore;
    history.ReadLog({partition, {}, {}}, [&](const NodePlace& place, const Version& version) {
        if (version.begunAt < since) {
            keptBefore.insert(place.number);
        } else {
            changes.nodes[place.number].versions.push_back(version);
        }
    });
    for (auto& [number, change] : changes.nodes) {
        const Version& oldest = change.versions.back();
        try {
            const auto before = history.Before(PlaceOf(partition, number), oldest.number).node;
            change.label = LabelOf(before, NodeNow(data, number));
            change.words = ChangesInWords(before, NodeNow(data, number));
        } catch (const RuntimeError& error) {
            if (error.Number() != ErrorNumber::StoreNotRecognized) {
                throw;
            }
            change.remark = "What it was then cannot be read.";
            continue;
        }
        if (oldest.number > 1 && !keptBefore.contains(number)) {
            change.remark =
                "Changes before " + LocalTime(oldest.begunAt) + " are kept no longer: more may have changed.";
        }
    }
    return changes;
}

ReportChanges ChangesAgainst(DataBase& other, Partition partition, const ReportData& data,
                             const std::string& place) {
    ReportChanges changes;
    changes.from = "against " + place;
    std::set<int> there;
    const auto compare = [&](int number, const std::optional<AutoNode>& before) {
        auto words = ChangesInWords(before, NodeNow(data, number));
        if (!words.empty()) {
            changes.nodes[number] = {LabelOf(before, NodeNow(data, number)), std::move(words), {}, {}};
        }
    };
    ReadWholeAutoNodes(
        other, partition,
        [&](int number, const AutoNode& node) {
            there.insert(number);
            compare(number, node);
        },
        [](Slot, int, int) {});
    for (const auto& [number, node] : data.flow.nodes) {
        if (!there.contains(number)) {
            compare(number, std::nullopt);
        }
    }
    changes.othersCompared = true;
    CompareOthers(changes, OthersOf(other, partition), OthersOf(data));
    return changes;
}

std::string ChangeMarkup(const NodeChange& change) {
    std::string html = "<div class=\"change\"><b>✎ Changed</b>\n<ul>\n";
    for (const std::string& words : change.words) {
        html += "<li>" + LabelMarkup(words, WordsLimit) + "</li>\n";
    }
    html += change.words.empty() && change.remark.empty() ? "<li>Nothing differs in the end.</li>\n" : "";
    html += change.remark.empty() ? "" : "<li>" + Escaped(Visible(change.remark)) + "</li>\n";
    html += "</ul>\n";
    for (const Version& version : change.versions) {
        html += "<p class=\"when\">" + Escaped(Visible(LocalTime(version.begunAt))) + " by " +
                LabelMarkup(AuthorText(version), 200) + ": " + LabelMarkup(OutcomeOf(version), 1000) +
                "</p>\n";
    }
    return html += "</div>\n";
}

std::string ChangesSection(const ReportChanges& changes, const ReportData& data, const ReportNodes& nodes) {
    std::string html = "<section id=\"changes\" class=\"page\">\n<h2>What changed " +
                       LabelMarkup(changes.from, 1000) + "</h2>\n<p>" +
                       (changes.othersCompared
                            ? "Of nodes of other types labels and the files of messages are compared."
                            : "The history keeps AUTO nodes; nodes of other types may have changed, too.") +
                       "</p>\n";
    if (changes.nodes.empty() && changes.others.empty()) {
        html += "<p>Nothing differs.</p>\n";
    }
    for (const auto& [number, change] : changes.nodes) {
        const NodeKey node{AutoType, number};
        const std::string name = Escaped(Visible(data.names.Text(node)));
        html += "<h3>" + nodes.Link(node, name) + ' ' + LabelMarkup(change.label) + "</h3>\n" +
                ChangeMarkup(change);
    }
    if (!changes.others.empty()) {
        html += "<h3>Nodes of other types</h3>\n<table><thead><tr><th scope=\"col\">Node</th>"
                "<th scope=\"col\">change</th></tr></thead>\n<tbody>\n";
        for (const auto& [node, words] : changes.others) {
            html += "<tr><th scope=\"row\">" + nodes.Link(node, Escaped(Visible(data.names.Text(node)))) +
                    "</th><td>" + LabelMarkup(words, WordsLimit) + "</td></tr>\n";
        }
        html += "</tbody></table>\n";
    }
    return html += "</section>\n";
}

} // namespace KAL_AUTO_Node
