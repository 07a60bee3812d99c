#include "report/ReportData.h"

#include "audit/PartitionCheck.h"
#include "calls/Flow.h"
#include "history/History.h"
#include "nodes/References.h"

#include <algorithm>
#include <tuple>

namespace KAL_AUTO_Node {

namespace {

template <class Value>
const std::vector<Value>& OrNone(const std::map<NodeKey, std::vector<Value>>& all, const NodeKey& node) {
    static const std::vector<Value> none;
    const auto found = all.find(node);
    return found == all.end() ? none : found->second;
}

void AddUses(ReportData& data, const NodeKey& holder, const AutoNode& node) {
    const auto add = [&](const Reference& target, std::string place) {
        if (RefersToNode(target.typeID)) {
            data.uses[target.Key()].push_back({holder, std::move(place)});
        }
    };
    for (const Prompt& prompt : node.prompts) {
        add(prompt.target, "prompt " + std::to_string(prompt.sequence));
    }
    for (const Action& action : node.actions) {
        add(action.target, KeysText(action));
    }
    for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
        add(node.branches.at(branch), Branches.at(branch).label);
    }
}

// Engines hand over the references of other types in orders of their own.
void AddOthers(ReportData& data, Flow& flow, std::vector<StoredReference> references) {
    std::ranges::sort(references, {}, [](const StoredReference& reference) {
        return std::tuple(reference.holder, reference.column, reference.row);
    });
    for (const StoredReference& reference : references) {
        const int typeID = *reference.typeID;
        const std::string place = PlaceText(reference.Column(), reference.row);
        const Reference target{typeID, reference.type, *reference.number, {}};
        data.others[reference.holder].push_back({place, target});
        if (!RefersToNode(typeID)) {
            continue;
        }
        data.uses[target.Key()].push_back({reference.holder, place});
        if (typeID == AutoType) {
            flow.AddReferenceTo(target.number);
            if (IsWay(reference, typeID) && data.flow.registered.contains(reference.holder)) {
                flow.AddWayTo(target.number);
            }
        }
    }
}

void AddFindings(ReportData& data, std::vector<Finding> findings) {
    for (Finding& finding : findings) {
        data.findings[finding.holder].push_back(std::move(finding));
    }
    for (auto& [holder, found] : data.findings) {
        if (holder.typeID != AutoType) {
            std::ranges::sort(found, {}, [](const Finding& finding) {
                return std::tuple(finding.table, finding.row, finding.fault, finding.where, finding.subject);
            });
        }
    }
}

} // namespace

const std::vector<NodeUse>& ReportData::UsesOf(const NodeKey& node) const { return OrNone(uses, node); }

const std::vector<Finding>& ReportData::FindingsOf(const NodeKey& node) const {
    return OrNone(findings, node);
}

std::string ReportData::LabelOf(const NodeKey& node) const {
    return flow.LabelOf({node.typeID, {}, node.number, {}});
}

ReportData ReadReportData(DataBase& dataBase, Partition partition) {
    ReportData data;
    data.names = TypeNames(dataBase);
    History history(dataBase);
    PartitionFindings found;
    std::vector<StoredReference> references;
    data.flow =
        ReadCallFlow(dataBase, history, partition, found, [&](const StoredReference& reference, int typeID) {
            references.push_back(reference);
            references.back().typeID = typeID;
        });
    Flow flow;
    for (const auto& [number, node] : data.flow.nodes) {
        flow.Add(number, node);
        AddUses(data, {AutoType, number}, node);
    }
    AddOthers(data, flow, std::move(references));
    for (auto& [node, uses] : data.uses) {
        std::ranges::stable_sort(uses, {}, &NodeUse::holder);
    }
    data.entries = flow.Entries();
    AddFindings(data, std::move(found.findings));
    for (ResultSet rows = dataBase.Query(Command::Get_Recordings, {partition, MessageType}); !rows.AtEnd();
         rows.MoveNext()) {
        data.recordings[rows.Number("NodeNumber")] = rows.Field("VexoFilename").value_or("");
    }
    history.ReadLog({partition, {}, {}}, [&](const NodePlace& place, const Version& version) {
        data.lastChanges.try_emplace(place.number, version); // the newest comes first
    });
    return data;
}

} // namespace KAL_AUTO_Node
