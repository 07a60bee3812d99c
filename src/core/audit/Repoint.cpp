#include "audit/Repoint.h"

#include "history/History.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"
#include "store/Connection.h"

#include <algorithm>
#include <istream>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* Work = "repoint";

// The slot of an AUTO node that a column is of.
Slot SlotOf(const ReferenceColumn& column) {
    if (const auto branch = std::ranges::find(Branches, column.word, &Branch::column);
        branch != Branches.end()) {
        return branch->slot;
    }
    return column.table == "Detail_AUTO_Prompts" ? Slot::Prompts : Slot::Actions;
}

class Planning {
  public:
    Planning(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
             std::span<const Replacement> replacements, const RepointTerms& terms)
        : dataBase_(dataBase), history_(history), names_(names), partition_(partition),
          replacements_(replacements), terms_(terms) {}

    RepointPlan Run() {
        ReadAhead ahead(dataBase_);
        types_.Read(ahead, dataBase_, partition_);
        CheckReplacements(ahead);
        if (byNode_.empty()) {
            return std::move(plan_);
        }
        std::set<int> autoHolders;
        for (StoredReference& use : Uses()) {
            if (terms_.without == use.holder) {
                continue;
            }
            const NodeKey& to = ReplacementOf(use).to;
            const int stored = StoredType(use);
            CheckPlace(use, stored, to);
            if (use.holder.typeID == AutoType) {
                autoHolders.insert(use.holder.number);
            }
            const int typeID = RefersToMessage(stored) ? stored : to.typeID;
            plan_.changes.push_back({std::move(use), typeID, names_.Name(typeID), to.number});
        }
        for (std::string& save : UnfinishedSaves(dataBase_, history_, names_, partition_, autoHolders)) {
            plan_.obstacles.push_back(std::move(save));
        }
        return std::move(plan_);
    }

  private:
    [[nodiscard]] std::string NameOf(const NodeKey& node) const { return names_.Text(node); }

    void CheckReplacements(ReadAhead& ahead) {
        ahead.Fetch([&] {
            for (const auto& [from, to] : replacements_) {
                static_cast<void>(IsNodeExisted(dataBase_, partition_, to));
            }
        });
        for (const Replacement& replacement : replacements_) {
            const auto& [from, to] = replacement;
            if (from.Itself() == to) {
                plan_.obstacles.push_back(NameOf(to) + " would take its own place");
            }
            if (!terms_.newAreMade) {
                CheckNew(to);
            }
            if (RefersToNode(from.typeID)) {
                byNode_.emplace(from.Itself(), &replacement);
            } else {
                plan_.obstacles.push_back(NameOf(from) + " is no node");
            }
        }
    }

    void CheckNew(const NodeKey& node) {
        if (!RefersToNode(node.typeID) || RefersToMessage(node.typeID)) {
            plan_.obstacles.push_back(NameOf(node) + " is no node that can take the place of another");
        } else if (!IsNodeExisted(dataBase_, partition_, node)) {
            plan_.obstacles.push_back(NameOf(node) + " does not exist");
        } else if (!types_.HasNumber(node)) {
            plan_.obstacles.push_back(
                AboveHighest(NameOf(node), types_.MaxNodeNumberCollection[node.typeID]));
        }
    }

    [[nodiscard]] std::vector<StoredReference> Uses() {
        if (byNode_.size() == 1) {
            return ReadUses(dataBase_, partition_, names_, byNode_.begin()->first);
        }
        std::set<NodeKey> nodes;
        for (const auto& [node, replacement] : byNode_) {
            nodes.insert(node);
        }
        return ReadUses(dataBase_, partition_, names_, nodes);
    }

    // The type under which a use is stored; the query has found it by its ID or its name.
    [[nodiscard]] int StoredType(const StoredReference& use) const {
        return use.typeID ? *use.typeID : names_.ID(use.type).value_or(byNode_.begin()->second->from.typeID);
    }

    [[nodiscard]] const Replacement& ReplacementOf(const StoredReference& use) const {
        return byNode_.size() == 1 ? *byNode_.begin()->second
                                   : *byNode_.at(NodeKey{StoredType(use), *use.number}.Itself());
    }

    void CheckPlace(const StoredReference& use, int stored, const NodeKey& to) {
        const std::string place = names_.Text(use.holder) + ", " + PlaceText(use.Column(), use.row);
        if (RefersToMessage(stored)) {
            if (to.typeID != MessageType) {
                plan_.obstacles.push_back(place + " is " + names_.Name(stored) + ", which takes a message");
            }
        } else if (use.holder.typeID == AutoType
                       ? !Offers(SlotOf(use.Column()), to)
                       : to.typeID != stored && OffersNowhere(use.holder.typeID, to.typeID)) {
            plan_.obstacles.push_back(place + " does not offer " + names_.Name(to.typeID));
        }
    }

    // Whether its number is too high is told once, of the node.
    [[nodiscard]] bool Offers(Slot slot, const NodeKey& node) const {
        const Standing standing = types_.Judge(slot, node);
        return standing != Standing::NotNamed && standing != Standing::NotOffered;
    }

    // Which of the sets is whose is not known of other types than this one.
    bool OffersNowhere(int holderTypeID, int typeID) {
        const auto [entry, added] = nowhere_.try_emplace({holderTypeID, typeID}, false);
        if (!added) {
            return entry->second;
        }
        for (ResultSet sets = dataBase_.Query(Command::Get_Sets_With_Node_Type, {typeID, holderTypeID});
             !sets.AtEnd(); sets.MoveNext()) {
            entry->second = sets.Number("Offers") == 0;
            if (!entry->second) {
                break;
            }
        }
        return entry->second;
    }

    DataBase& dataBase_;
    History& history_;
    const TypeNames& names_;
    Partition partition_;
    std::span<const Replacement> replacements_;
    const RepointTerms& terms_;
    TypeCatalogue types_;
    std::map<NodeKey, const Replacement*> byNode_;
    std::map<std::pair<int, int>, bool> nowhere_; // by the holder's type and the new one
    RepointPlan plan_;
};

// Writes each row as it was planned, wherever the others lead to by then.
void Write(DataBase& dataBase, Partition partition, const RepointPlan& plan) {
    std::map<std::size_t, std::unique_ptr<Statement>> statements;
    std::vector<std::vector<std::optional<std::string>>> parameters;
    std::vector<StatementRun> runs;
    parameters.reserve(plan.changes.size());
    for (const auto& [use, typeID, type, number] : plan.changes) {
        const ReferenceColumn& column = use.Column();
        auto& statement = statements[use.column];
        if (!statement) {
            statement = dataBase.Prepare(RepointStatement(column));
        }
        auto& all = parameters.emplace_back(
            ValuesOf({type, number, partition, use.number,
                      column.hasTypeID ? Parameter(use.typeID) : Parameter(use.type), use.holder.number}));
        if (column.hasTypeID) {
            all.insert(all.begin(), std::to_string(typeID));
        }
        if (column.HasRows()) {
            all.push_back(std::to_string(use.row));
        }
        runs.push_back({statement.get(), all});
    }
    const auto written = dataBase.RunTogether(runs);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        if (written.at(i) != 1) {
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "The store changed " + std::to_string(written[i]) + " rows of " +
                                   std::string(plan.changes[i].from.Column().table) +
                                   " instead of 1; nothing is changed");
        }
    }
}

} // namespace

std::vector<Replacement> ReplacementsOf(std::istream& text, const TypeNames& names) {
    std::vector<Replacement> replacements;
    std::map<NodeKey, std::pair<NodeKey, int>> known; // the target and its line
    int number = 0;
    for (std::string line; std::getline(text, line);) {
        ++number;
        const auto fail = [&](const std::string& what) {
            throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                               "line " + std::to_string(number) + ": " + what);
        };
        if (const auto first = line.find_first_not_of(" \t\r");
            first == std::string::npos || line[first] == '#') {
            continue;
        }
        constexpr std::string_view arrow = "->";
        const auto at = line.find(arrow);
        if (at == std::string::npos) {
            fail("'" + line + "' is not of the form MSG 6 -> MSG 16");
        }
        NodeKey from;
        NodeKey to;
        try {
            from = names.MeantNode(std::string_view(line).substr(0, at));
            to = names.MeantNode(std::string_view(line).substr(at + arrow.size()));
        } catch (const RuntimeError& error) {
            fail(error.what());
        }
        const auto [entry, added] = known.try_emplace(from.Itself(), to, number);
        if (!added && entry->second.first != to) {
            fail(names.Text(from) + " has a target in line " + std::to_string(entry->second.second) +
                 " already");
        }
        if (added) {
            replacements.push_back({from, to});
        }
    }
    return replacements;
}

std::set<NodeKey> RepointPlan::Holders() const {
    std::set<NodeKey> holders;
    for (const Change& change : changes) {
        holders.insert(change.from.holder);
    }
    return holders;
}

std::vector<std::string> UnfinishedSaves(DataBase& dataBase, History& history, const TypeNames& names,
                                         Partition partition, const std::set<int>& numbers) {
    std::vector<std::string> told;
    std::vector<int> unfinished;
    if (numbers.empty() || !history.Exists()) {
        return told;
    }
    for (ResultSet rows = dataBase.Query(Command::Get_Unfinished_AUTO_Nodes, {partition}); !rows.AtEnd();
         rows.MoveNext()) {
        if (const int number = rows.Number("NodeNumber"); numbers.contains(number)) {
            unfinished.push_back(number);
        }
    }
    for (const int number : unfinished) {
        const NodePlace place = PlaceOf(partition, number);
        const auto versions = history.Versions(place);
        const std::string name = names.Text({AutoType, number});
        if (const auto made = std::ranges::find_if(versions, IsBeingMade); made != versions.end()) {
            told.push_back(name + " is being saved by " + AuthorText(*made) + " since " +
                           LocalTime(made->begunAt));
        } else if (history.Unfinished(place)) {
            // Putting it back later would bring what is changed now back, too.
            told.push_back(name + " was left half-way by a save; put it back (auto-node restore) or save it");
        }
    }
    return told;
}

RepointPlan PlanRepoint(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
                        std::span<const Replacement> replacements, const RepointTerms& terms) {
    return Planning(dataBase, history, names, partition, replacements, terms).Run();
}

void CarryOut(DataBase& dataBase, History& history, Partition partition, const RepointPlan& plan,
              const char* work, const std::string& date, std::set<NodePlace> besides) {
    const auto holders = plan.Holders();
    for (const NodeKey& holder : holders) {
        if (holder.typeID == AutoType) {
            besides.insert(PlaceOf(partition, holder.number));
        }
    }
    history.Keep(std::vector<NodePlace>(besides.begin(), besides.end()), work);
    Batch dates(dataBase);
    for (const NodeKey& holder : holders) {
        dates.Add(Command::Date_General_Pool, {date, partition, holder});
    }
    dates.Run();
    Write(dataBase, partition, plan);
}

RepointPlan Repoint(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
                    std::span<const Replacement> replacements, const std::string& date) {
    RepointPlan plan;
    {
        const Snapshot snapshot(dataBase);
        plan = PlanRepoint(dataBase, history, names, partition, replacements);
    }
    if (!plan.obstacles.empty() || plan.changes.empty()) {
        return plan;
    }
    history.Require();
    {
        Transaction all(dataBase);
        // Others may have changed something until now; what is planned from here on stays so.
        plan = PlanRepoint(dataBase, history, names, partition, replacements);
        if (!plan.obstacles.empty()) {
            return plan;
        }
        CarryOut(dataBase, history, partition, plan, Work, date);
        all.Commit();
    }
    dataBase.Flush();
    return plan;
}

} // namespace KAL_AUTO_Node
