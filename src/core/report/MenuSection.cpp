#include "report/MenuSection.h"

#include "calls/EntryText.h"
#include "diagram/Markup.h"
#include "history/Changes.h"
#include "platform/Counted.h"
#include "platform/VisibleText.h"
#include "report/MenuPicture.h"
#include "report/ReportChanges.h"

#include <algorithm>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Of the sequences that lead to the same, and of different such groups.
constexpr std::size_t SequenceLimit = 16;
constexpr std::size_t GroupLimit = 40;

constexpr std::size_t PlaceLimit = 200; // characters of where something is found, and what

std::string Sentence(const SettingField& rule, const Settings& settings, const std::string& words) {
    if (IsWithin(rule, settings)) {
        return words;
    }
    std::string name = rule.name;
    name.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(name.front())));
    return name + ": " + SettingText(rule, settings);
}

// In words, a sentence each; what is stored and stands for none of them as it is.
std::string SettingsMarkup(const Settings& settings) {
    const auto& [digits, retries, selection, digit] = SettingFields;
    const auto seconds = [&](const SettingField& rule) {
        return Counted(static_cast<std::size_t>(ValueOf(rule, settings)), "second");
    };
    const int most = ValueOf(digits, settings);
    const int again = ValueOf(retries, settings);
    std::vector<std::string> sentences = {
        Sentence(digits, settings,
                 most == 1 ? "Takes one digit" : "Takes up to " + std::to_string(most) + " digits"),
        Sentence(selection, settings, "Waits " + seconds(selection) + " for the first digit"),
        Sentence(digit, settings, "Waits " + seconds(digit) + " for each further digit"),
        Sentence(retries, settings,
                 again == 0 ? "Does not ask again"
                            : "Asks again up to " + Counted(static_cast<std::size_t>(again), "time"))};
    if (!IsTerminatingDigit(settings)) {
        sentences.push_back("Terminating digit: " + TerminatingDigitText(settings));
    } else if (const std::size_t key = TerminatingDigitOf(settings); key == 0) {
        sentences.emplace_back("No key ends an entry");
    } else {
        const std::string keys = TerminatingDigits.at(key);
        sentences.push_back("The key " + (keys.size() > 1 ? "* or #" : keys) + " ends an entry");
    }
    std::string text = "<p class=\"settings\">";
    for (const std::string& sentence : sentences) {
        text += Escaped(Shortened(sentence, 200)) + ". ";
    }
    text.back() = '<';
    return text += "/p>\n";
}

class MenuWriter {
  public:
    MenuWriter(const ReportData& data, const ReportNodes& nodes, int number)
        : data_(data), nodes_(nodes), itself_{AutoType, number}, node_(data.flow.nodes.at(number)),
          menu_(number, node_), findings_(data.FindingsOf(itself_)) {}

    std::string Write(const NodeChange* change) {
        const std::string place = nodes_.PlaceOf(itself_);
        const std::string label = node_.label.value_or("");
        html_ = "<section class=\"menu\" id=\"" + place + "\" aria-labelledby=\"" + place +
                "-name\" data-node>\n<h3 id=\"" + place + "-name\"><span class=\"n\">" +
                Escaped(Visible(itself_.Text(node_.type))) + "</span> <span class=\"l\">" +
                LabelMarkup(label, HeadLimit) + "</span></h3>\n";
        if (label.size() > HeadLimit && Shortened(label, HeadLimit).ends_with("…")) {
            html_ += "<p class=\"whole\">Its label: " + LabelMarkup(label, LabelLimitWhole) +
                     (label.size() > LabelLimitWhole ? " (" + std::to_string(label.size()) + " bytes)" : "") +
                     "</p>\n";
        }
        html_ += "<div class=\"body\">\n";
        WriteLastChange();
        html_ += change == nullptr ? "" : ChangeMarkup(*change);
        html_ += SettingsMarkup(node_.settings) + FindingsMarkup(findings_);
        html_ += MenuPicture(data_, nodes_, itself_.number);
        WritePrompts();
        WriteKeys();
        WriteExceptions();
        const std::string users = nodes_.UsedFrom(itself_);
        html_ += "<h4>Who leads here</h4>\n<p>" +
                 (users.empty() ? "No node refers to it; calls may enter here." : users) +
                 "</p>\n</div>\n</section>\n";
        return std::move(html_);
    }

  private:
    // Characters of a label in the heading, and below it where there are more: all that anybody reads.
    static constexpr std::size_t HeadLimit = 300;
    static constexpr std::size_t LabelLimitWhole = 5000;

    void WriteLastChange() {
        const auto known = data_.lastChanges.find(itself_.number);
        html_ += "<p class=\"when\">";
        if (known == data_.lastChanges.end()) {
            html_ += "No change of it is kept.</p>\n";
            return;
        }
        const Version& version = known->second;
        html_ += "Last changed " + Escaped(Visible(LocalTime(version.begunAt))) + " by " +
                 LabelMarkup(AuthorText(version), 200) + ": " + LabelMarkup(OutcomeOf(version), 1000) +
                 ".</p>\n";
    }

    void WritePrompts() {
        html_ += "<h4>Plays</h4>\n";
        if (node_.prompts.empty()) {
            html_ += "<p>Nothing.</p>\n";
            return;
        }
        html_ += "<ol>\n";
        for (const Prompt& prompt : node_.prompts) {
            html_ += "<li>" + nodes_.Named(prompt.target, Slot::Prompts) + Signs([&](const Finding& finding) {
                         return finding.table == "Detail_AUTO_Prompts" && finding.row == prompt.sequence;
                     }) +
                     "</li>\n";
        }
        html_ += "</ol>\n";
    }

    // The signs of what is found at a place; the words stand in the list of all that is found.
    template <class Filter>
    [[nodiscard]] std::string Signs(Filter isHere) const {
        std::string signs;
        for (const Finding& finding : findings_) {
            if (isHere(finding) && finding.fault != Fault::MissingNode) {
                const auto& [code, severity, meaning, advice] = RuleOf(finding.fault);
                signs += ' ' + SignMarkup(severity) + " <small>" + code + "</small>";
            }
        }
        return signs;
    }

    void WriteRow(const std::string& head, const std::string& target, const std::string& known) {
        html_ +=
            "<tr><th scope=\"row\">" + head + "</th><td>" + target + "</td><td>" + known + "</td></tr>\n";
    }

    void WriteHead(const char* caption, const char* first) {
        html_ += std::string("<table class=\"keys\"><caption>") + caption +
                 "</caption>\n<thead><tr><th scope=\"col\">" + first +
                 "</th><th scope=\"col\">leads to</th><th scope=\"col\">what is "
                 "known</th></tr></thead>\n<tbody>\n";
    }

    void WriteKeys() {
        WriteHead("What each key does", "Keys");
        for (const Action& action : node_.actions) {
            WriteRow(Escaped(Shortened(KeysText(action), 40)), nodes_.Named(action.target, Slot::Actions),
                     Signs([&](const Finding& finding) {
                         return finding.table == "Detail_AUTO_Action" && finding.row == action.sequence;
                     }));
        }
        html_ += "</tbody>\n";
        WriteOtherEntries();
        html_ += "</table>\n";
    }

    // Entries of which the actions' rows do not say all: that lead nowhere or not for certain, or after which
    // callers wait. Those of which the same is to be said stand together.
    void WriteOtherEntries() {
        struct Group {
            std::string target;
            std::string known;
            std::vector<std::string> sequences;
        };

        std::vector<Group> groups;
        std::map<std::pair<std::string, std::string>, std::size_t> positions;
        for (const auto& [length, intervals] : DigitSpaceOf(node_)) {
            for (const DigitInterval& interval : intervals) {
                const Outcomes outcomes = menu_.Enter(length, interval);
                const bool byAction = outcomes.IsCertain() && outcomes.ways.front().by == Outcome::By::Action;
                if (byAction && interval.waits.count == 0) {
                    continue;
                }
                std::string target = Told(outcomes, std::nullopt);
                std::string known = Escaped(WaitingAfter(menu_, interval));
                // That nobody is led anywhere stands in the words, that callers are asked again in the
                // settings.
                AddReasons(known, outcomes, {Reason::NoAction, Reason::LongerEntry});
                const auto [at, isNew] = positions.try_emplace({target, known}, groups.size());
                if (isNew) {
                    groups.push_back({std::move(target), std::move(known), {}});
                }
                groups[at->second].sequences.push_back(Sequences(length, interval));
            }
        }
        html_ += groups.empty() ? "" : "<tbody class=\"rest\">\n";
        for (std::size_t i = 0; i < std::min(groups.size(), GroupLimit); ++i) {
            WriteRow(Joined(groups[i].sequences, SequenceLimit), groups[i].target, groups[i].known);
        }
        if (groups.size() > GroupLimit) {
            WriteRow("and more", Counted(groups.size() - GroupLimit, "other group") + " of entries", "");
        }
        html_ += groups.empty() ? "" : "</tbody>\n";
    }

    [[nodiscard]] std::string Told(const Outcomes& outcomes, std::optional<std::size_t> branch) const {
        return TextOf(outcomes, branch, [&](const Target& target) { return nodes_.Named(target); });
    }

    static void AddReasons(std::string& known, const Outcomes& outcomes,
                           std::initializer_list<Reason> without) {
        for (const Reason reason : outcomes.reasons) {
            if (std::ranges::find(without, reason) == without.end()) {
                known += known.empty() ? "" : ". ";
                known += TextOf(reason).meaning;
            }
        }
    }

    void WriteExceptions() {
        WriteHead("Exceptions", "When");
        for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
            const Outcomes outcomes = menu_.Except(branch);
            std::string known;
            AddReasons(known, outcomes, {Reason::AskedAgain});
            known +=
                Signs([&](const Finding& finding) { return finding.where == Branches.at(branch).label; });
            WriteRow(Branches.at(branch).label,
                     nodes_.Named(node_.branches.at(branch), Branches.at(branch).slot), known);
        }
        html_ += "</tbody></table>\n";
    }

    const ReportData& data_;
    const ReportNodes& nodes_;
    NodeKey itself_;
    const AutoNode& node_;
    Menu menu_;
    const std::vector<Finding>& findings_;
    std::string html_;
};

} // namespace

std::string AdviceMarkup(std::string_view text) {
    std::string markup;
    bool isCommand = false;
    for (const char c : text) {
        if (c == '`') {
            markup += isCommand ? "</code>" : "<code>";
            isCommand = !isCommand;
        } else {
            markup += Escaped(std::string_view(&c, 1));
        }
    }
    return markup;
}

std::string FindingsMarkup(const std::vector<Finding>& findings) {
    std::map<Fault, std::vector<std::string>> places;
    for (const Finding& finding : findings) {
        std::string place = LabelMarkup(finding.where, PlaceLimit);
        place += finding.where.empty() || finding.subject.empty() ? "" : ": ";
        places[finding.fault].push_back(place + LabelMarkup(finding.subject, PlaceLimit));
    }
    std::string list;
    for (const auto& [fault, all] : places) {
        const auto& [code, severity, meaning, advice] = RuleOf(fault);
        list += "<li>" + SignMarkup(severity) + ' ' + AdviceMarkup(meaning) + " <small>" + code + "</small>";
        const std::string where = Joined(all, all.size(), "; ");
        list += (where.empty() ? "" : "<br>" + where) + "</li>\n";
    }
    return list.empty() ? list : "<ul class=\"findings\">\n" + list + "</ul>\n";
}

std::string MenuSection(const ReportData& data, const ReportNodes& nodes, int number,
                        const NodeChange* change) {
    return MenuWriter(data, nodes, number).Write(change);
}

} // namespace KAL_AUTO_Node
