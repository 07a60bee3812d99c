#include "auto-node/Arguments.h"
#include "auto-node/CallsText.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "calls/Trace.h"
#include "nodes/JsonText.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;
using Json = nlohmann::ordered_json;

// One trace, for people or for programs.
class Tracing {
  public:
    explicit Tracing(const CallMap& map) : map_(map) {}

    // The node as a caller meets it.
    void Print(const Menu& menu) const {
        PrintHead(menu.Itself());
        Table played = Rows();
        AddPlayed(played, menu);
        played.Print(std::cout);
        Table entries = Rows();
        for (const EntrySpan& span : SpansOf(menu)) {
            AddOutcomes(entries, span.low == span.high ? span.low : span.low + '-' + span.high, span.outcomes,
                        std::nullopt);
        }
        for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
            AddOutcomes(entries, Branches.at(branch).label, menu.Except(branch), branch);
        }
        std::cout << '\n';
        entries.Print(std::cout);
    }

    void Print(const Walk& walk, const std::vector<Step>& steps) const {
        for (std::size_t i = 0; i < walk.size(); ++i) {
            const Step* step = i < steps.size() ? &steps[i] : nullptr;
            for (const Stop& stop : walk[i]) {
                std::cout << (i == 0 ? "" : "\n");
                Print(stop, step);
            }
            if (step != nullptr && step->kind == Step::Kind::Choose) {
                std::cout << "\n" << Visible(step->text) << " is chosen\n";
            }
        }
    }

    [[nodiscard]] Json ToJson(const Menu& menu) const {
        Json document = Describe(menu.Itself());
        Json& entries = document["entries"] = Json::array();
        for (const auto& [low, high, outcomes] : SpansOf(menu)) {
            entries.push_back({{"low", low}, {"high", high}});
            AddJson(entries.back(), map_, menu, outcomes);
        }
        Json& exceptions = document["exceptions"] = Json::object();
        for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
            AddJson(exceptions[Branches.at(branch).label], map_, menu, menu.Except(branch));
        }
        return document;
    }

    [[nodiscard]] Json ToJson(const Walk& walk, const std::vector<Step>& steps) const {
        Json levels = Json::array();
        for (std::size_t i = 0; i < walk.size(); ++i) {
            Json& level = levels.emplace_back(Json::object());
            level["step"] = i < steps.size() ? Json(steps[i].text) : Json();
            level["stops"] = Json::array();
            for (const Stop& stop : walk[i]) {
                Json told = Describe(stop.node);
                if (stop.outcomes) {
                    AddJson(told, map_, *stop.menu, *stop.outcomes);
                }
                told["end"] = stop.end ? Json(TextOf(*stop.end).code) : Json();
                level["stops"].push_back(std::move(told));
            }
        }
        return levels;
    }

  private:
    static Table Rows() { return Table({Left, Left, Left, Left}, "  "); }

    void PrintHead(const Target& node) const {
        std::cout << Visible(node.Text()) << "  " << Visible(map_.LabelOf(node.Key())) << '\n';
    }

    void AddPlayed(Table& table, const Menu& menu) const {
        const auto played = PlayedBy(menu.Node());
        for (const Target& prompt : played) {
            table.Add({&prompt == &played.front() ? "plays" : "", prompt.Text(), map_.LabelOf(prompt.Key())});
        }
        if (played.empty()) {
            table.Add({"plays", "nothing"});
        }
    }

    // In one row.
    void AddOutcomes(Table& table, const std::string& step, const Outcomes& outcomes,
                     std::optional<std::size_t> branch) const {
        table.Add({step, TextOf(outcomes, branch),
                   outcomes.IsCertain() ? map_.LabelOf(outcomes.ways.front().target.Key()) : "",
                   Codes(outcomes.reasons)});
    }

    void Print(const Stop& stop, const Step* step) const {
        PrintHead(stop.node);
        Table table = Rows();
        if (stop.menu != nullptr) {
            AddPlayed(table, *stop.menu);
        }
        if (stop.outcomes) {
            for (const Outcome& outcome : stop.outcomes->ways) {
                const bool first = &outcome == &stop.outcomes->ways.front();
                table.Add({first ? step->text : "or", outcome.target.Text(),
                           map_.LabelOf(outcome.target.Key()), ByText(*stop.menu, outcome)});
            }
        }
        const bool chosen = step != nullptr && step->kind == Step::Kind::Choose;
        for (const OtherWay& way : map_.WaysFrom(stop.node)) {
            table.Add({"refers to", way.target.Text(), map_.LabelOf(way.target.Key()), way.place});
        }
        table.Print(std::cout);
        for (const Reason reason : stop.outcomes ? stop.outcomes->reasons : std::vector<Reason>()) {
            std::cout << "  " << TextOf(reason).code << ": " << TextOf(reason).meaning << '\n';
        }
        if (stop.end && !chosen) {
            std::cout << "  " << TextOf(*stop.end).code << ": " << TextOf(*stop.end).meaning << '\n';
        }
    }

    // A node with what is played there or, of another type, where its references lead.
    [[nodiscard]] Json Describe(const Target& node) const {
        Json document = KAL_AUTO_Node::ToJson(map_, node);
        if (const Menu* menu = map_.MenuOf(node)) {
            Json& prompts = document["prompts"] = Json::array();
            for (const Target& prompt : PlayedBy(menu->Node())) {
                prompts.push_back(KAL_AUTO_Node::ToJson(map_, prompt));
            }
        } else {
            Json& ways = document["refersTo"] = Json::array();
            for (const OtherWay& way : map_.WaysFrom(node)) {
                ways.push_back(KAL_AUTO_Node::ToJson(map_, way.target));
                ways.back()["place"] = way.place;
            }
        }
        return document;
    }

    const CallMap& map_;
};

struct Options {
    NodePlace place;
    std::vector<std::string> steps;
    bool json = false;
};

int Run(const Options& options, DataBase& dataBase) {
    const TypeNames names(dataBase);
    // A choice may be one word to the shell.
    std::vector<std::string> words;
    for (const std::string& given : options.steps) {
        std::istringstream parts(given);
        for (std::string word; parts >> word;) {
            words.push_back(word);
        }
    }
    const std::vector<Step> steps = StepsOf(words, names);
    const CallMap map = Lasting("Reading the partition",
                                [&] { return ReadCallMap(dataBase, names, options.place.partition); });
    const Tracing tracing(map);
    const Menu& menu = map.RequireMenu(options.place.number);
    const Walk walk = WalkFrom(map, menu.Number(), steps);
    if (options.json) {
        std::cout << JsonText(steps.empty() ? tracing.ToJson(menu) : tracing.ToJson(walk, steps)) << '\n';
    } else if (steps.empty()) {
        tracing.Print(menu);
    } else {
        tracing.Print(walk, steps);
    }
    return 0;
}

} // namespace

Subcommand TraceCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add(name, "Tell what callers meet at an AUTO node, or on the way that steps from it take");
    AddNode(command, options->place);
    command
        .Texts("STEP", options->steps,
               "What a caller does: digits, '*', '#', timeout, invalid or abort; @TYPE NUMBER chooses among "
               "ways")
        .ShownAs("");
    command.Flag("--json", options->json, "Print JSON, for programs");
    return {command, Reading([options](DataBase& dataBase) { return Run(*options, dataBase); })};
}

} // namespace KAL_AUTO_Node
