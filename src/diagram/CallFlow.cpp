#include "diagram/CallFlow.h"

#include "audit/PartitionCheck.h"
#include "nodes/NodeTypes.h"
#include "nodes/PartitionReader.h"
#include "store/DataBase.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

std::pair<int, int> Led(const Reference& reference) {
    return {NodeTypeOf(reference.typeID), reference.number};
}

class Links {
  public:
    void Add(const Reference& target, Slot from, std::string entry) {
        const bool exception = from != Slot::Actions;
        const auto known = std::ranges::find_if(
            links_, [&](const Link& link) { return link.exception == exception && link.target == target; });
        if (known != links_.end()) {
            known->entries.push_back(std::move(entry));
        } else {
            links_.push_back({target, DisplayText(target, from), exception, {std::move(entry)}});
        }
    }

    [[nodiscard]] std::vector<Link> Take() { return std::move(links_); }

  private:
    std::vector<Link> links_;
};

// Adds what is reached within so many steps over the neighbours that are given.
template <class Neighbours>
void Reach(int from, int depth, Neighbours neighbours, std::set<int>& reached) {
    std::set<int> seen = {from};
    std::vector<int> edge = {from};
    for (; depth > 0 && !edge.empty(); --depth) {
        std::vector<int> next;
        for (const int number : edge) {
            for (const int neighbour : neighbours(number)) {
                if (seen.insert(neighbour).second) {
                    next.push_back(neighbour);
                }
            }
        }
        edge = std::move(next);
    }
    reached.merge(seen);
}

// What is found in the AUTO nodes, but for what their picture shows by itself.
void AddRemarks(CallFlow& flow, const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        const auto& [code, severity, meaning, advice] = RuleOf(finding.fault);
        if (finding.holder.typeID != AutoType || finding.fault == Fault::MissingNode ||
            severity == Severity::Note) {
            continue;
        }
        std::string text = code;
        for (const std::string& part : {finding.where, finding.subject}) {
            text += part.empty() ? part : ' ' + part;
        }
        flow.remarks[finding.holder.number].push_back({severity == Severity::Error, std::move(text)});
    }
}

} // namespace

bool CallFlow::IsMissing(const Reference& reference) const {
    return RefersToNode(reference.typeID) && !LeadsOn(reference) &&
           (reference.typeID == AutoType || !registered.contains(Led(reference)));
}

bool CallFlow::LeadsOn(const Reference& reference) const {
    return reference.typeID == AutoType && nodes.contains(reference.number);
}

std::string CallFlow::LabelOf(const Reference& reference) const {
    if (LeadsOn(reference)) {
        return nodes.at(reference.number).label.value_or("");
    }
    const auto found = registered.find(Led(reference));
    return found == registered.end() ? std::string() : found->second;
}

CallFlow ReadCallFlow(DataBase& dataBase, History& history, Partition partition) {
    CallFlow flow{partition, {}, {}, {}};
    ReadWholeAutoNodes(
        dataBase, partition, [&](int number, const AutoNode& node) { flow.nodes.emplace(number, node); },
        [](Slot /*list*/, int /*number*/, int /*rows*/) {});
    AddRemarks(flow, CheckPartition(dataBase, history, partition).findings);
    ResultSet rows = dataBase.Query(Command::Get_Register, {partition.config, partition.number});
    const std::size_t type = rows.Column("NodeTypeID");
    const std::size_t number = rows.Column("NodeNumber");
    const std::size_t label = rows.Column("NodeDescription");
    for (; !rows.AtEnd(); rows.MoveNext()) {
        flow.registered.emplace(std::pair(rows.Number(type), rows.Number(number)),
                                rows.Field(label).value_or(""));
    }
    return flow;
}

std::vector<Link> LinksOf(const AutoNode& node) {
    Links links;
    for (const Action& action : node.actions) {
        const auto [low, high] = RangeOf(action);
        links.Add(action.target, Slot::Actions, low == high ? std::string(low) : EntryText(action));
    }
    for (std::size_t i = 0; i < BranchRules.size(); ++i) {
        if (node.branches[i].typeID != NumberlessExceptionType) {
            links.Add(node.branches[i], BranchRules[i].slot, BranchRules[i].label);
        }
    }
    return links.Take();
}

std::set<int> Surroundings(const CallFlow& flow, int number, int depth) {
    std::map<int, std::set<int>> onwards;
    std::map<int, std::set<int>> backwards;
    for (const auto& [from, node] : flow.nodes) {
        for (const Link& link : LinksOf(node)) {
            if (flow.LeadsOn(link.target)) {
                onwards[from].insert(link.target.number);
                backwards[link.target.number].insert(from);
            }
        }
    }
    std::set<int> reached;
    for (auto* neighbours : {&onwards, &backwards}) {
        Reach(
            number, depth, [&](int from) -> const std::set<int>& { return (*neighbours)[from]; }, reached);
    }
    return reached;
}

} // namespace KAL_AUTO_Node
