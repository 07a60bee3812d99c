#include "audit/Findings.h"
#include "auto-node/Arguments.h"
#include "auto-node/Commands.h"
#include "auto-node/Table.h"
#include "calls/DigitSpace.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/NodeJson.h"
#include "platform/VisibleText.h"

#include <iostream>
#include <memory>
#include <stdexcept>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;
using Json = nlohmann::ordered_json;

// What is said of the sequences of a length, each with its count.
struct Question {
    const char* member; // of the JSON document
    const char* words;
    bool (*holds)(const DigitInterval& interval);
};

constexpr std::array<Question, 4> Questions = {{
    {"leading", "lead to a node", [](const DigitInterval& interval) { return interval.leads.count == 1; }},
    {"invalid", "lead to Invalid", [](const DigitInterval& interval) { return interval.leads.count == 0; }},
    {"shared", "stand in several actions",
     [](const DigitInterval& interval) { return interval.leads.count > 1; }},
    {"waiting", "wait for more digits",
     [](const DigitInterval& interval) { return interval.waits.count > 0; }},
}};

std::string Named(const AutoNode& node, const ActionSet& actions, bool withTargets) {
    std::string text;
    for (std::size_t i = 0; i < std::min(actions.count, actions.first.size()); ++i) {
        const Action& action = node.actions[actions.first[i]];
        text += (i > 0 ? ", " : "") + EntryText(action);
        if (withTargets) {
            text += " to " + DisplayText(action.target, Slot::Actions);
        }
    }
    return actions.count > actions.first.size()
               ? text + " and " + std::to_string(actions.count - actions.first.size()) + " more"
               : text;
}

std::string Sequences(const DigitLength& length, const DigitInterval& interval) {
    const std::string low = SequenceText(length.length, interval.low);
    return interval.low == interval.high ? low : low + '-' + SequenceText(length.length, interval.high);
}

std::string LeadsTo(const AutoNode& node, const DigitInterval& interval) {
    const ActionSet& leads = interval.leads;
    if (leads.count == 0) {
        return "Invalid";
    }
    return leads.count == 1 ? DisplayText(node.actions[leads.first.front()].target, Slot::Actions)
                            : "not known which: " + Named(node, leads, true);
}

void Print(const NodePlace& place, const AutoNode& node, int digits,
           const std::vector<DigitLength>& lengths) {
    const Reference& invalid = node.branches[static_cast<std::size_t>(
        std::ranges::find(BranchRules, Slot::Invalid, &BranchRule::slot) - BranchRules.begin())];
    std::cout << Visible(node.type) << ' ' << place.number << "  " << Visible(node.label.value_or(""))
              << "\nTakes 1 to " << digits << " digits; Invalid is "
              << Visible(DisplayText(invalid, Slot::Invalid)) << '\n';
    for (const DigitLength& length : lengths) {
        std::cout << '\n' << length.length << (length.length == 1 ? " digit: " : " digits: ");
        for (const Question& question : Questions) {
            std::cout << (&question == &Questions.front() ? "" : ", ") << length.Count(question.holds) << ' '
                      << question.words;
        }
        std::cout << '\n';
        Table table({Left, Right, Left, Left, Left}, "  ");
        for (const DigitInterval& interval : length.intervals) {
            const bool one = interval.leads.count == 1;
            table.Add(
                {Sequences(length, interval), std::to_string(interval.Count()), LeadsTo(node, interval),
                 one ? node.actions[interval.leads.first.front()].target.label : "",
                 interval.waits.count > 0 ? "waits, because of " + Named(node, interval.waits, false) : ""});
        }
        table.Print(std::cout);
    }
    Table left({Left, Left, Left}, "  ");
    bool any = false;
    for (const Action& action : node.actions) {
        if (const auto fault = FaultOf(KindOf(action, digits))) {
            any = true;
            left.Add({EntryText(action), DisplayText(action.target, Slot::Actions), RuleOf(*fault).meaning});
        }
    }
    if (any) {
        std::cout << "\nTake no part\n";
        left.Print(std::cout);
    }
}

Json SetJson(const AutoNode& node, const ActionSet& actions) {
    Json sequences = Json::array();
    for (std::size_t i = 0; i < std::min(actions.count, actions.first.size()); ++i) {
        sequences.push_back(node.actions[actions.first[i]].sequence);
    }
    return {{"count", actions.count}, {"first", sequences}};
}

Json ToJson(const NodePlace& place, const AutoNode& node, int digits,
            const std::vector<DigitLength>& lengths) {
    Json document{{"config", place.partition.config}, {"partition", place.partition.number},
                  {"number", place.number},           {"numberOfDigits", digits},
                  {"lengths", Json::array()},         {"takeNoPart", Json::array()}};
    for (const DigitLength& length : lengths) {
        Json member{{"length", length.length}};
        for (const Question& question : Questions) {
            member[question.member] = length.Count(question.holds);
        }
        Json& intervals = member["intervals"] = Json::array();
        for (const DigitInterval& interval : length.intervals) {
            intervals.push_back({{"low", SequenceText(length.length, interval.low)},
                                 {"high", SequenceText(length.length, interval.high)},
                                 {"actions", SetJson(node, interval.leads)},
                                 {"waitsFor", SetJson(node, interval.waits)}});
        }
        document["lengths"].push_back(std::move(member));
    }
    for (const Action& action : node.actions) {
        if (const auto fault = FaultOf(KindOf(action, digits))) {
            document["takeNoPart"].push_back({{"action", action.sequence}, {"code", RuleOf(*fault).code}});
        }
    }
    return document;
}

} // namespace

Subcommand DigitsCommand(CommandLine& program) {
    struct Options {
        NodePlace place;
        bool json = false;
    };

    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        "digits", "Tell where each digit sequence leads from an AUTO node, and which wait for more digits");
    AddNode(command, options->place);
    command.Flag("--json", options->json, "Print JSON, for programs");
    return {command, [options] {
                DataBase dataBase;
                const AutoNode node = RequireAutoNode(dataBase, options->place);
                const int digits = EntryLengthOf(node.settings).most;
                const auto lengths = DigitSpaceOf(node);
                if (options->json) {
                    std::cout << JsonText(ToJson(options->place, node, digits, lengths)) << '\n';
                } else {
                    Print(options->place, node, digits, lengths);
                }
                return 0;
            }};
}

} // namespace KAL_AUTO_Node
