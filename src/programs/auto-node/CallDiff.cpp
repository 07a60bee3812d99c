#include "auto-node/CallDiff.h"

#include "audit/Repoint.h"
#include "auto-node/Progress.h"
#include "nodes/JsonText.h"
#include "platform/TellError.h"
#include "platform/VisibleText.h"
#include "store/DataBase.h"

#include <iostream>
#include <map>
#include <nlohmann/json.hpp>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* ComparingCalls = "Comparing calls";

// Partition by partition.
class Telling {
  public:
    Telling(const TypeNames& names, bool json) : names_(names), json_(json) {}

    void Tell(Partition partition, const std::vector<NodeCallChanges>& nodes) {
        for (const auto& [node, changes] : nodes) {
            const std::string name = names_.Text(node);
            for (const CallChange& change : changes) {
                any_ = true;
                if (json_) {
                    document_.push_back(ToJson(partition, node, change));
                } else {
                    std::cout << Visible(name + (change.what == "node" ? ": " : ", ") + change.Text())
                              << '\n';
                }
            }
        }
    }

    // Whether there was any.
    [[nodiscard]] bool End() const {
        if (json_) {
            std::cout << JsonText(document_) << '\n';
        } else if (!any_) {
            std::cout << "callers notice nothing\n";
        }
        return any_;
    }

  private:
    [[nodiscard]] Json ToJson(Partition partition, const NodeKey& node, const CallChange& change) const {
        Json entries = Json::array();
        for (const auto& [low, high] : change.entries) {
            entries.push_back({{"low", low}, {"high", high}});
        }
        return {{"config", partition.config},    {"partition", partition.number},
                {"typeID", node.typeID},         {"type", names_.Name(node.typeID)},
                {"number", node.number},         {"what", change.what},
                {"entries", std::move(entries)}, {"before", change.before},
                {"after", change.after},         {"says", change.says}};
    }

    const TypeNames& names_;
    bool json_;
    bool any_ = false;
    Json document_ = Json::array();
};

// Lets what the plan changes refer to the new nodes.
void Apply(CallMap& map, const RepointPlan& plan) {
    std::map<int, AutoNode> edited;
    for (const auto& [use, typeID, type, number] : plan.changes) {
        const Reference to{typeID, type, number, {}};
        const ReferenceColumn& column = use.Column();
        if (use.holder.typeID != AutoType) {
            for (auto* ways : {&map.others, &map.played}) {
                for (OtherWay& way : (*ways)[use.holder]) {
                    if (way.place == PlaceText(column, use.row)) {
                        way.target = {typeID, number, true, type};
                    }
                }
            }
            continue;
        }
        const auto menu = map.menus.find(use.holder.number);
        if (menu == map.menus.end()) {
            continue;
        }
        AutoNode& node = edited.try_emplace(use.holder.number, menu->second.Node()).first->second;
        const auto branch = std::ranges::find(Branches, column.word, &Branch::column);
        const auto repoint = [&to, row = use.row, from = *use.number](auto& rows) {
            for (auto& item : rows) {
                if (item.sequence == row && item.target.number == from) {
                    item.target = to;
                }
            }
        };
        if (branch != Branches.end()) {
            node.branches.at(static_cast<std::size_t>(branch - Branches.begin())) = to;
        } else if (column.table.ends_with("_Prompts")) {
            repoint(node.prompts);
        } else {
            repoint(node.actions);
        }
    }
    for (auto& [holder, node] : edited) {
        map.Put(holder, std::move(node));
    }
}

} // namespace

void AddCalls(const CommandArguments& command, CallOptions& options, const std::optional<Option>& dryRun) {
    const Option calls = command.Flag("--calls", options.calls, "Tell what callers notice of it");
    if (dryRun) {
        static_cast<void>(calls.Needs(*dryRun));
    }
    static_cast<void>(
        command.Flag("--json", options.json, "Print JSON, for programs; with --calls").Needs(calls));
    AddExitCode(command, options.exitCode, dryRun);
}

void AddExitCode(const CommandArguments& command, bool& exitCode, const std::optional<Option>& dryRun) {
    const Option option =
        command.Flag("--exit-code", exitCode,
                     "Exit with 0 where nothing differs, 1 where something does, 2 after an error");
    if (dryRun) {
        static_cast<void>(option.Needs(*dryRun));
    }
}

std::function<int(const StoreChoice&)> ByStatus(const bool& exitCode,
                                                std::function<int(const StoreChoice&)> run) {
    return [&exitCode, run = std::move(run)](const StoreChoice& store) {
        if (!exitCode) {
            return run(store);
        }
        try {
            return run(store);
        } catch (const std::exception& error) {
            TellError(store.Told(error));
            return 2;
        }
    };
}

bool PrintCalls(DataBase& dataBase, const std::vector<NodeStates>& nodes, bool json) {
    const TypeNames names(dataBase);
    Telling telling(names, json);
    for (auto node = nodes.begin(); node != nodes.end();) {
        const Partition partition = node->place.partition;
        telling.Tell(partition, Lasting(ComparingCalls, [&] {
                         CallMap before = ReadCallMap(dataBase, names, partition);
                         CallMap after = before;
                         for (; node != nodes.end() && node->place.partition == partition; ++node) {
                             before.Put(node->place.number, node->before);
                             after.Put(node->place.number, node->after);
                         }
                         return CompareCalls(before, after);
                     }));
    }
    return telling.End();
}

bool PrintCalls(DataBase& dataBase, Partition partition, const RepointPlan& plan, bool json) {
    const TypeNames names(dataBase);
    Telling telling(names, json);
    telling.Tell(partition, Lasting(ComparingCalls, [&] {
                     const CallMap before = ReadCallMap(dataBase, names, partition);
                     CallMap after = before;
                     Apply(after, plan);
                     return CompareCalls(before, after);
                 }));
    return telling.End();
}

bool PrintCalls(DataBase& dataBase, const NodePlace& place, const std::optional<AutoNode>& before,
                const std::optional<AutoNode>& after, bool json) {
    const TypeNames names(dataBase);
    const auto menu = [&](const std::optional<AutoNode>& node) {
        return node ? std::optional(Menu(place.number, *node)) : std::nullopt;
    };
    const auto from = menu(before);
    const auto to = menu(after);
    Telling telling(names, json);
    telling.Tell(place.partition, {{place.Key(), Lasting(ComparingCalls, [&] {
                                        return CompareCalls(from ? &*from : nullptr, to ? &*to : nullptr);
                                    })}});
    return telling.End();
}

} // namespace KAL_AUTO_Node
