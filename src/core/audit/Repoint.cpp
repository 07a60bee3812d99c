#include "audit/Repoint.h"

#include "history/History.h"
#include "nodes/ReferenceData.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"
#include "store/Connection.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* Work = "repoint";

// The slot of an AUTO node that a column is of.
Slot SlotOf(const ReferenceColumn& column) {
    if (const auto branch = std::ranges::find(BranchRules, column.word, &BranchRule::column);
        branch != BranchRules.end()) {
        return branch->slot;
    }
    return column.table == "Detail_AUTO_Prompts" ? Slot::Prompts : Slot::Actions;
}

NodePlace PlaceOf(Partition partition, int number) {
    if (!std::in_range<std::int16_t>(number)) {
        throw RuntimeError(ErrorNumber::Overflow,
                           "No AUTO node can have the number " + std::to_string(number));
    }
    return {partition, static_cast<std::int16_t>(number)};
}

class Planning {
  public:
    Planning(DataBase& dataBase, History& history, const TypeNames& names, Partition partition, NodeID from,
             NodeID to)
        : dataBase_(dataBase), history_(history), names_(names), partition_(partition), from_(from), to_(to) {
    }

    RepointPlan Run() {
        ReadAhead ahead(dataBase_);
        FetchLists(ahead, dataBase_, partition_);
        ReadNodeNames(dataBase_, partition_, lists_);
        if (NodeTypeOf(from_.typeID) == to_.typeID && from_.number == to_.number) {
            plan_.obstacles.push_back(NameOfNew() + " would take its own place");
        }
        CheckNew();
        if (!RefersToNode(from_.typeID)) {
            plan_.obstacles.push_back(NodeName{from_.typeID, names_.Name(from_.typeID), from_.number}.Text() +
                                      " is no node");
            return std::move(plan_);
        }
        std::set<int> autoHolders;
        for (StoredReference& use : ReadUses(dataBase_, partition_, names_, from_.typeID, from_.number)) {
            CheckPlace(use);
            if (use.holderTypeID == AutoType) {
                autoHolders.insert(use.holder);
            }
            const int typeID = RefersToMessage(StoredType(use)) ? StoredType(use) : to_.typeID;
            plan_.changes.push_back({std::move(use), typeID, names_.Name(typeID)});
        }
        for (const int holder : WithUnfinished(autoHolders)) {
            CheckSaves(holder);
        }
        return std::move(plan_);
    }

  private:
    [[nodiscard]] std::string NameOfNew() const {
        return NodeName{to_.typeID, names_.Name(to_.typeID), to_.number}.Text();
    }

    // The type under which a use is stored; the query has found it by its ID or its name.
    [[nodiscard]] int StoredType(const StoredReference& use) const {
        return use.typeID ? *use.typeID : names_.ID(use.type).value_or(from_.typeID);
    }

    void CheckNew() {
        const int* maximum = lists_.MaxNodeNumberCollection.Find(to_.typeID);
        if (!RefersToNode(to_.typeID) || RefersToMessage(to_.typeID)) {
            plan_.obstacles.push_back(NameOfNew() + " is no node that can take the place of another");
        } else if (!IsNodeExisted(dataBase_, partition_, to_.typeID, to_.number)) {
            plan_.obstacles.push_back(NameOfNew() + " does not exist");
        } else if (maximum != nullptr && to_.number > *maximum) {
            plan_.obstacles.push_back(NameOfNew() + " is above the partition's highest number of the type, " +
                                      std::to_string(*maximum));
        }
    }

    void CheckPlace(const StoredReference& use) {
        const std::string place =
            NodeName{use.holderTypeID, names_.Name(use.holderTypeID), use.holder}.Text() + ", " +
            PlaceText(use.Column(), use.row);
        const int stored = StoredType(use);
        if (RefersToMessage(stored)) {
            if (to_.typeID != MessageType) {
                plan_.obstacles.push_back(place + " is " + names_.Name(stored) + ", which takes a message");
            }
        } else if (use.holderTypeID == AutoType
                       ? !Offers(SlotOf(use.Column()))
                       : to_.typeID != stored && !OffersEverywhere(use.holderTypeID)) {
            plan_.obstacles.push_back(place + " does not offer " + names_.Name(to_.typeID));
        }
    }

    bool Offers(Slot slot) {
        const auto [entry, added] = offers_.try_emplace(slot, false);
        bool& offers = entry->second;
        if (added) {
            ReadContainableTypes(dataBase_, partition_, slot, lists_, [&](int typeID, const std::string&) {
                offers = offers || typeID == to_.typeID;
            });
        }
        return offers;
    }

    bool OffersEverywhere(int holderTypeID) {
        const auto [entry, added] = offeredEverywhere_.try_emplace(holderTypeID, false);
        bool& all = entry->second;
        if (!added) {
            return all;
        }
        for (ResultSet sets = dataBase_.Query(Command::Get_Sets_With_Node_Type, {to_.typeID, holderTypeID});
             !sets.AtEnd(); sets.MoveNext()) {
            all = sets.Number("Offers") > 0;
            if (!all) {
                break;
            }
        }
        return all;
    }

    // Those of the nodes a change of which did not get to its end, or has not yet.
    std::vector<int> WithUnfinished(const std::set<int>& holders) {
        std::vector<int> found;
        if (holders.empty() || !history_.Exists()) {
            return found;
        }
        for (ResultSet rows =
                 dataBase_.Query(Command::Get_Unfinished_AUTO_Nodes, {partition_.config, partition_.number});
             !rows.AtEnd(); rows.MoveNext()) {
            if (const int number = rows.Number("NodeNumber"); holders.contains(number)) {
                found.push_back(number);
            }
        }
        return found;
    }

    void CheckSaves(int holder) {
        const NodePlace place = PlaceOf(partition_, holder);
        const auto versions = history_.Versions(place);
        const std::string name = NodeName{AutoType, names_.Name(AutoType), holder}.Text();
        if (const auto made = std::ranges::find_if(versions, IsBeingMade); made != versions.end()) {
            plan_.obstacles.push_back(name + " is being saved by " + AuthorText(*made) + " since " +
                                      LocalTime(made->begunAt));
        } else if (history_.Unfinished(place)) {
            // Putting it back later would bring the old reference back, too.
            plan_.obstacles.push_back(
                name + " was left half-way by a save; put it back (auto-node restore) or save it");
        }
    }

    DataBase& dataBase_;
    History& history_;
    const TypeNames& names_;
    Partition partition_;
    NodeID from_;
    NodeID to_;
    NodeLists lists_;
    std::map<Slot, bool> offers_;
    std::map<int, bool> offeredEverywhere_; // by the holder's type
    RepointPlan plan_;
};

// Writes all changes of one column and one stored type as one statement, as they were planned.
void Write(DataBase& dataBase, Partition partition, NodeID from, NodeID to, const RepointPlan& plan) {
    struct Group {
        const RepointPlan::Change* example = nullptr;
        std::int64_t count = 0;
    };

    std::map<std::tuple<std::size_t, std::optional<int>, std::string>, Group> groups;
    for (const RepointPlan::Change& change : plan.changes) {
        const StoredReference& use = change.from;
        const bool hasTypeID = use.Column().hasTypeID;
        // By ID the stored name says nothing.
        Group& group = groups[{use.column, use.typeID, hasTypeID ? std::string() : use.type}];
        group.example = &change;
        ++group.count;
    }
    // To a server they go together.
    std::vector<std::unique_ptr<Statement>> prepared;
    std::vector<std::vector<std::optional<std::string>>> parameters;
    for (const auto& [key, group] : groups) {
        const RepointPlan::Change& change = *group.example;
        const ReferenceColumn& column = change.from.Column();
        prepared.push_back(dataBase.Prepare(RepointStatement(column)));
        auto& all = parameters.emplace_back();
        for (const Parameter& parameter :
             {Parameter(change.type), Parameter(to.number), Parameter(partition.config),
              Parameter(partition.number), Parameter(from.number),
              column.hasTypeID ? Parameter(change.from.typeID) : Parameter(change.from.type)}) {
            all.push_back(parameter.Value());
        }
        if (column.hasTypeID) {
            all.insert(all.begin(), std::to_string(change.typeID));
        }
    }
    std::vector<StatementRun> runs;
    for (std::size_t i = 0; i < prepared.size(); ++i) {
        runs.push_back({prepared[i].get(), parameters[i]});
    }
    const auto written = dataBase.RunTogether(runs);
    for (std::size_t i = 0; const auto& [key, group] : groups) {
        if (written.at(i) != group.count) {
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "The store changed " + std::to_string(written[i]) + " rows of " +
                                   std::string(group.example->from.Column().table) + " instead of " +
                                   std::to_string(group.count) + "; nothing is changed");
        }
        ++i;
    }
}

} // namespace

RepointPlan PlanRepoint(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
                        NodeID from, NodeID to) {
    return Planning(dataBase, history, names, partition, from, to).Run();
}

RepointPlan Repoint(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
                    NodeID from, NodeID to, const std::string& date) {
    RepointPlan plan;
    {
        const Snapshot snapshot(dataBase);
        plan = PlanRepoint(dataBase, history, names, partition, from, to);
    }
    if (!plan.obstacles.empty() || plan.changes.empty()) {
        return plan;
    }
    if (!history.Prepare()) {
        throw RuntimeError(ErrorNumber::PermissionDenied,
                           "This store can keep no history, so that the change could not be taken back");
    }
    {
        Transaction all(dataBase);
        // Others may have changed something until now; what is planned from here on stays so.
        plan = PlanRepoint(dataBase, history, names, partition, from, to);
        if (!plan.obstacles.empty()) {
            return plan;
        }
        std::set<std::pair<int, int>> holders;
        for (const RepointPlan::Change& change : plan.changes) {
            holders.emplace(change.from.holderTypeID, change.from.holder);
        }
        std::vector<NodePlace> autoNodes;
        Batch dates(dataBase);
        for (const auto& [typeID, number] : holders) {
            if (typeID == AutoType) {
                autoNodes.push_back(PlaceOf(partition, number));
            }
        }
        history.Keep(autoNodes, Work);
        for (const auto& [typeID, number] : holders) {
            dates.Add(Command::Date_General_Pool, {date, partition.config, partition.number, typeID, number});
        }
        dates.Run();
        Write(dataBase, partition, from, to, plan);
        all.Commit();
    }
    dataBase.Flush();
    return plan;
}

} // namespace KAL_AUTO_Node
