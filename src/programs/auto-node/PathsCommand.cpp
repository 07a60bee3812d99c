#include "auto-node/Arguments.h"
#include "auto-node/CallsText.h"
#include "auto-node/Commands.h"
#include "auto-node/Progress.h"
#include "auto-node/Table.h"
#include "calls/Paths.h"
#include "nodes/JsonText.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

using enum Table::Align;
using Json = nlohmann::ordered_json;

struct Options {
    NodeArguments node;
    std::int16_t from = 0;
    bool fromOne = false;
    bool json = false;
};

class Telling {
  public:
    Telling(const CallMap& map, const TypeNames& names, const NodeKey& to)
        : map_(map), names_(names), to_(to) {}

    void Add(int from, const std::vector<PathStep>& steps, bool certain) {
        std::string line = std::to_string(map_.partition.config) + ' ' +
                           std::to_string(map_.partition.number) + ' ' + Named({AutoType, from}) + ':';
        std::string over;
        Json words = Json::array();
        Json nodes = Json::array();
        for (const auto& [step, node] : steps) {
            line += ' ' + step;
            words.push_back(step);
            nodes.push_back({{"typeID", node.typeID},
                             {"type", names_.Name(node.typeID)},
                             {"number", node.number},
                             {"label", map_.LabelOf(node)}});
            if (&node != &steps.back().node) {
                over += (over.empty() ? "over " : ", ") + Named(node);
            }
        }
        line += " -> " + Named(to_);
        const char* verdict = certain ? "certain" : "possible";
        table_.Add({verdict, line, steps.empty() ? "begins there" : over});
        document_.push_back({{"from", from},
                             {"certain", certain},
                             {"steps", std::move(words)},
                             {"nodes", std::move(nodes)},
                             {"expectation", line}});
    }

    void Print(bool json) const {
        if (json) {
            std::cout << JsonText(document_) << '\n';
        } else {
            table_.Print(std::cout);
        }
    }

    [[nodiscard]] std::string Named(const NodeKey& node) const { return names_.Text(node); }

  private:
    const CallMap& map_;
    const TypeNames& names_;
    NodeKey to_;
    Table table_{{Left, Left, Left}};
    Json document_ = Json::array();
};

int Run(const Options& options, DataBase& dataBase) {
    const TypeNames names(dataBase);
    const NodeKey to = options.node.Meant(names);
    if (to.typeID == NumberlessType || to.typeID == NumberlessExceptionType) {
        throw RuntimeError(names.Name(to.typeID) + " is no node");
    }
    const auto from = options.fromOne ? std::optional<int>(options.from) : std::nullopt;
    const auto [map, paths] = Lasting("Looking for ways", [&] {
        CallMap whole = ReadCallMap(dataBase, names, options.node.partition);
        auto found = FindPaths(whole, names, to, from);
        return std::pair(std::move(whole), std::move(found));
    });
    Telling telling(map, names, to);
    for (const auto& [start, certain, possible] : paths) {
        if (certain) {
            telling.Add(start, *certain, true);
        }
    }
    for (const auto& [start, certain, possible] : paths) {
        if (possible) {
            telling.Add(start, *possible, false);
        }
    }
    if (!paths.empty() || options.json) {
        telling.Print(options.json);
        return 0;
    }
    std::cout << "No way leads to " << Visible(telling.Named(to))
              << (map.labels.contains(to) ? "" : ", which does not exist,") << " from "
              << (from ? telling.Named({AutoType, *from}) : "where calls may enter") << ".\n";
    return 0;
}

} // namespace

Subcommand PathsCommand(CommandLine& program, const std::string& name) {
    auto options = std::make_shared<Options>();
    const CommandArguments command =
        program.Add(name, "Tell the shortest steps by which callers get to a node");
    AddNodeOfAnyType(command, options->node);
    const Option from = AddNumber(command, "--from", options->from,
                                  "Number of the AUTO node at which to begin; else all where calls may enter")
                            .ShownAs("NODE");
    command.Flag("--json", options->json, "Print JSON, for programs");
    return {command, Reading([options, from](DataBase& dataBase) {
                options->fromOne = from.Given();
                return Run(*options, dataBase);
            })};
}

} // namespace KAL_AUTO_Node
