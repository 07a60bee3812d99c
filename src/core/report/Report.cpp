#include "report/Report.h"

#include "diagram/Markup.h"
#include "platform/Counted.h"
#include "platform/VisibleText.h"
#include "report/MenuSection.h"
#include "report/ReportTables.h"

#include <array>

namespace KAL_AUTO_Node {

namespace {

struct PagePart {
    std::string_view text;
    const char* hash; // by which the page's policy knows it
};

constexpr PagePart Style =
#include "report/Style.inc"
    ;
constexpr PagePart Script =
#include "report/Script.inc"
    ;

constexpr std::size_t EntryLimit = 100;

// Of menus, and of all other nodes: of a larger page a browser draws what comes near the window only. Then it
// tells those who hear it no more than the headings of the rest.
constexpr std::size_t LargeMenus = 200;
constexpr std::size_t LargeOthers = 2000;

class Page {
  public:
    Page(const ReportData& data, const ReportHead& head, const ReportChanges* changes,
         const ReportSink& append, const ReportProgress& progress)
        : data_(data), head_(head), changes_(changes), append_(append), progress_(progress), nodes_(data),
          findings_(ByFault(data)) {
        for (const auto& [number, node] : data.flow.nodes) {
            outcome_.menus += number != TemplateNumber ? 1 : 0;
        }
        for (const auto& [fault, all] : findings_) {
            outcome_.findings += all.size();
        }
    }

    ReportOutcome Write() {
        WriteHead();
        WriteSummary();
        WriteContents();
        if (changes_ != nullptr) {
            append_(ChangesSection(*changes_, data_, nodes_));
        }
        WriteFindings(findings_, nodes_, append_);
        WriteFlowPictures(data_, nodes_, append_, outcome_.warnings, progress_);
        WriteMenus();
        WriteMessages(data_, nodes_, append_);
        WriteOthers(data_, nodes_, append_);
        append_("</main>\n<script>" + std::string(Script.text) + "</script>\n</body>\n</html>\n");
        return std::move(outcome_);
    }

  private:
    void WriteHead() {
        const auto& [config, number] = data_.flow.partition;
        const std::string partition =
            "Configuration " + std::to_string(config) + ", partition " + std::to_string(number);
        append_(
            "<!DOCTYPE html>\n<html lang=\"en\" data-running=\"" + partition + " · " +
            Escaped(head_.written) +
            "\">\n<head>\n<meta charset=\"utf-8\">\n<meta http-equiv=\"Content-Security-Policy\" "
            "content=\"default-src 'none'; style-src '" +
            Style.hash + "'; script-src '" + Script.hash +
            "'; base-uri 'none'; form-action 'none'\">\n<meta name=\"viewport\" "
            "content=\"width=device-width, initial-scale=1\">\n<meta name=\"color-scheme\" content=\"light "
            "dark\">\n<meta name=\"referrer\" content=\"no-referrer\">\n<title>" +
            partition + ": the call flow, " + Escaped(head_.written) + "</title>\n<style>" +
            std::string(Style.text) + "</style>\n</head>\n<body" + (IsLarge() ? " class=\"large\"" : "") +
            ">\n<a class=\"skip\" href=\"#summary\">To the "
            "content</a>\n<header>\n<nav "
            "aria-label=\"Parts\">\n<a href=\"#summary\">Summary</a>\n" +
            (changes_ != nullptr ? "<a href=\"#changes\">Changes</a>\n" : "") +
            "<a href=\"#findings\">Findings</a>\n<a href=\"#picture\">Picture</a>\n<a "
            "href=\"#menus\">Menus</a>\n<a href=\"#messages\">Messages</a>\n<a href=\"#others\">Other "
            "nodes</a>\n</nav>\n<search id=\"find\" hidden><label for=\"sought\">Find a node</label> <input "
            "id=\"sought\" type=\"search\" autocomplete=\"off\" spellcheck=\"false\" placeholder=\"number or "
            "label\"><output id=\"told\" for=\"sought\"></output><ul id=\"found\" hidden></ul></search>\n"
            "</header>\n<main>\n");
    }

    [[nodiscard]] bool IsLarge() const {
        std::size_t others = 0;
        for (const auto& [typeID, numbers] : nodes_.Listed()) {
            others += numbers.size();
        }
        return outcome_.menus > LargeMenus || others > LargeOthers;
    }

    void WriteSummary() {
        const auto& [config, number] = data_.flow.partition;
        append_(
            "<section id=\"summary\" class=\"first\">\n<p class=\"over\">Call flow</p>\n<h1>Configuration " +
            std::to_string(config) + ", partition " + std::to_string(number) + "</h1>\n<dl>\n");
        Fact("Written", Escaped(Visible(head_.written)));
        Fact("From the store in", LabelMarkup(head_.place, 1000));
        Fact("Menus", "<a href=\"#menus\">" + std::to_string(outcome_.menus) + "</a> AUTO nodes");
        std::vector<std::string> counts;
        for (const auto& [typeID, numbers] : nodes_.Listed()) {
            if (typeID != AutoType) {
                counts.push_back("<a href=\"#" + std::string(typeID == MessageType ? "messages" : "others") +
                                 "\">" + std::to_string(numbers.size()) + "</a> " +
                                 Escaped(Visible(data_.names.Name(typeID))));
            }
        }
        Fact("Other nodes", counts.empty() ? "none" : Joined(counts, counts.size()));
        std::vector<std::string> entries;
        for (const int entry : data_.entries) {
            entries.push_back(nodes_.Named(NodeKey{AutoType, entry}));
        }
        Fact("Calls may enter at", entries.empty() ? "no menu" : Joined(entries, EntryLimit, "<br>"));
        if (changes_ != nullptr) {
            Fact("Changed " + Escaped(Visible(changes_->from)),
                 "<a href=\"#changes\">" + Counted(changes_->nodes.size(), "AUTO node") + "</a>" +
                     (changes_->othersCompared
                          ? ", " + Counted(changes_->others.size(), "node") + " of other types"
                          : ""));
        }
        append_("</dl>\n");
        WriteKinds();
        append_(
            "<div class=\"sign-off\"><p>Read and approved</p><p>Name</p><p>Date</p><p>Signature</p></div>\n"
            "</section>\n");
    }

    void Fact(const std::string& name, const std::string& markup) {
        append_("<dt>" + name + "</dt><dd>" + markup + "</dd>\n");
    }

    void WriteKinds() {
        append_("<h2>What is found</h2>\n");
        if (findings_.empty()) {
            append_("<p>Nothing is wrong.</p>\n");
            return;
        }
        append_(
            "<table class=\"kinds\"><thead><tr><th scope=\"col\">Count</th><th scope=\"col\">kind</th><th "
            "scope=\"col\">what it is</th></tr></thead>\n<tbody>\n");
        for (const auto& [fault, all] : findings_) {
            const auto& [code, severity, meaning, advice] = RuleOf(fault);
            append_("<tr><td><a href=\"#found_" + std::to_string(static_cast<int>(fault)) + "\">" +
                    std::to_string(all.size()) + "</a></td><td>" + SignMarkup(severity) + ' ' +
                    NameOf(severity) + "</td><td>" + AdviceMarkup(meaning) + "</td></tr>\n");
        }
        append_("</tbody></table>\n");
    }

    void WriteContents() {
        append_("<section id=\"menus\" class=\"page\">\n<h2>Menus</h2>\n");
        if (outcome_.menus == 0) {
            append_("<p>There are none.</p>\n</section>\n");
            return;
        }
        append_("<ul class=\"contents\">\n");
        for (const auto& [number, node] : data_.flow.nodes) {
            const NodeKey key{AutoType, number};
            if (!data_.IsMenu(key)) {
                continue;
            }
            // The worst that is found of it.
            std::optional<Severity> worst;
            for (const Finding& finding : data_.FindingsOf(key)) {
                const Severity severity = RuleOf(finding.fault).severity;
                worst = std::min(worst.value_or(severity), severity);
            }
            const bool changed = changes_ != nullptr && changes_->Of(number) != nullptr;
            append_("<li>" + nodes_.Named(key) +
                    (worst && *worst != Severity::Note ? ' ' + SignMarkup(*worst) : std::string()) +
                    (changed ? " <b class=\"edited\" title=\"changed\">✎</b>" : "") + "</li>\n");
        }
        append_("</ul>\n</section>\n");
    }

    void WriteMenus() {
        std::size_t done = 0;
        for (const auto& [number, node] : data_.flow.nodes) {
            if (number != TemplateNumber) {
                append_(
                    MenuSection(data_, nodes_, number, changes_ != nullptr ? changes_->Of(number) : nullptr));
                ++done;
                progress_(
                    [&] { return "Menu " + std::to_string(done) + " of " + std::to_string(outcome_.menus); });
            }
        }
    }

    const ReportData& data_;
    const ReportHead& head_;
    const ReportChanges* changes_;
    const ReportSink& append_;
    const ReportProgress& progress_;
    ReportNodes nodes_;
    FindingsByFault findings_;
    ReportOutcome outcome_;
};

} // namespace

ReportOutcome WriteReport(const ReportData& data, const ReportHead& head, const ReportChanges* changes,
                          const ReportSink& append, const ReportProgress& progress) {
    return Page(data, head, changes, append, progress).Write();
}

} // namespace KAL_AUTO_Node
