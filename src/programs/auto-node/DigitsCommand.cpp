#include "audit/Findings.h"
#include "auto-node/Arguments.h"
#include "auto-node/CallsText.h"
#include "auto-node/Commands.h"
#include "auto-node/Table.h"
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

constexpr std::array<Question, 5> Questions = {{
    {"leading", "held by an action", [](const DigitInterval& interval) { return interval.leads.count == 1; }},
    {"shared", "by several", [](const DigitInterval& interval) { return interval.leads.count > 1; }},
    {"invalid", "by none", [](const DigitInterval& interval) { return interval.leads.count == 0; }},
    {"unclear", "may be held by one more",
     [](const DigitInterval& interval) { return interval.may.count > 0; }},
    {"waiting", "begin a longer one", [](const DigitInterval& interval) { return interval.waits.count > 0; }},
}};

void Print(const NodePlace& place, const Menu& menu, const std::vector<DigitLength>& lengths) {
    const AutoNode& node = menu.Node();
    std::cout << Visible(node.type) << ' ' << place.number << "  " << Visible(node.label.value_or("")) << '\n'
              << Visible(EntriesText(menu)) << '\n';
    for (const DigitLength& length : lengths) {
        std::cout << '\n' << length.length << (length.length == 1 ? " digit: " : " digits: ");
        for (const Question& question : Questions) {
            std::cout << (&question == &Questions.front() ? "" : ", ") << length.Count(question.holds) << ' '
                      << question.words;
        }
        std::cout << '\n';
        Table table({Left, Right, Left, Left, Left, Left}, "  ");
        for (const DigitInterval& interval : length.intervals) {
            const IntervalText text = TextOf(menu, length.length, interval);
            table.Add(
                {text.entries, std::to_string(text.count), text.leadsTo, text.label, text.waits, text.codes});
        }
        table.Print(std::cout);
    }
    Table left({Left, Left, Left}, "  ");
    bool any = false;
    for (const Action& action : node.actions) {
        if (const auto fault = FaultOf(KindOf(action, menu.Entries().most))) {
            any = true;
            left.Add({EntryText(action), DisplayText(action.target, Slot::Actions), RuleOf(*fault).meaning});
        }
    }
    if (any) {
        std::cout << "\nHold nothing, or not for certain\n";
        left.Print(std::cout);
    }
}

Json SetJson(const AutoNode& node, const ActionSet& actions) {
    Json sequences = Json::array();
    for (const std::size_t action : actions.First()) {
        sequences.push_back(node.actions[action].sequence);
    }
    return {{"count", actions.count}, {"first", sequences}};
}

Json ToJson(const NodePlace& place, const Menu& menu, const std::vector<DigitLength>& lengths) {
    const AutoNode& node = menu.Node();
    const int digits = menu.Entries().most;
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
                                 {"waitsFor", SetJson(node, interval.waits)},
                                 {"mayHold", SetJson(node, interval.may)},
                                 {"certain", menu.Enter(length.length, interval).IsCertain()}});
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

Subcommand DigitsCommand(CommandLine& program, const std::string& name) {
    struct Options {
        NodePlace place;
        bool json = false;
    };

    auto options = std::make_shared<Options>();
    const CommandArguments command = program.Add(
        name, "Tell where each digit sequence leads from an AUTO node, and which wait for more digits");
    AddNode(command, options->place);
    command.Flag("--json", options->json, "Print JSON, for programs");
    return {command, Reading([options](DataBase& dataBase) {
                const Menu menu(options->place.number, RequireAutoNode(dataBase, options->place));
                const auto lengths = DigitSpaceOf(menu.Node());
                if (options->json) {
                    std::cout << JsonText(ToJson(options->place, menu, lengths)) << '\n';
                } else {
                    Print(options->place, menu, lengths);
                }
                return 0;
            })};
}

} // namespace KAL_AUTO_Node
