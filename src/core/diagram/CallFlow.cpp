#include "diagram/CallFlow.h"

#include "audit/PartitionCheck.h"
#include "nodes/NodeTypes.h"
#include "nodes/References.h"

#include <algorithm>
#include <tuple>

namespace KAL_AUTO_Node {

namespace {

class Links {
  public:
    void Add(const Reference& target, std::string name, bool exception, std::string entry) {
        const auto known = std::ranges::find_if(
            links_, [&](const Link& link) { return link.exception == exception && link.target == target; });
        if (known != links_.end()) {
            known->entries.push_back(std::move(entry));
        } else {
            links_.push_back({target, std::move(name), exception, {std::move(entry)}});
        }
    }

    [[nodiscard]] std::vector<Link> Take() { return std::exchange(links_, {}); }

  private:
    std::vector<Link> links_;
};

std::vector<Link> LinksOf(const AutoNode& node) {
    Links links;
    for (const Action& action : node.actions) {
        links.Add(action.target, DisplayText(action.target, Slot::Actions), false, KeysText(action));
    }
    for (std::size_t i = 0; i < Branches.size(); ++i) {
        const Reference& target = node.branches[i];
        if (target.typeID != NumberlessExceptionType) {
            links.Add(target, DisplayText(target, Branches[i].slot), true, Branches[i].label);
        }
    }
    return links.Take();
}

bool IsException(const ReferenceColumn& column) {
    return std::ranges::find(Branches, column.word, &Branch::column) != Branches.end();
}

// The ways of nodes of other types, in their order.
std::map<NodeKey, std::vector<Link>> OtherLinks(std::vector<StoredReference> ways) {
    const auto order = [](const StoredReference& way) {
        return std::tuple(way.holder, IsException(way.Column()), way.row, way.column);
    };
    std::ranges::sort(ways, {}, order);
    std::map<NodeKey, std::vector<Link>> others;
    Links links;
    for (auto way = ways.begin(); way != ways.end();) {
        const NodeKey& holder = way->holder;
        for (; way != ways.end() && way->holder == holder; ++way) {
            links.Add({*way->typeID, way->type, *way->number, {}},
                      way->type + ' ' + std::to_string(*way->number), IsException(way->Column()),
                      PlaceText(way->Column(), way->row));
        }
        others.emplace(holder, links.Take());
    }
    return others;
}

// Leaves the nodes that are there and from which AUTO nodes are reached; whether those are there does not
// matter.
void LeaveLeadingOn(CallFlow& flow) {
    std::erase_if(flow.others, [&](const auto& other) { return !flow.registered.contains(other.first); });
    std::map<NodeKey, std::vector<NodeKey>> back;
    std::set<NodeKey> kept;
    std::vector<NodeKey> reached;
    const auto keep = [&](const NodeKey& node) {
        if (kept.insert(node).second) {
            reached.push_back(node);
        }
    };
    for (const auto& [node, links] : flow.others) {
        for (const Link& link : links) {
            if (link.target.typeID == AutoType) {
                keep(node);
            } else {
                back[link.target.Key()].push_back(node);
            }
        }
    }
    while (!reached.empty()) {
        const NodeKey node = reached.back();
        reached.pop_back();
        std::ranges::for_each(back[node], keep);
    }
    std::erase_if(flow.others, [&](const auto& other) { return !kept.contains(other.first); });
}

// Adds the AUTO nodes that are reached within so many steps over the neighbours that are given.
void Reach(int from, int depth, const std::map<NodeKey, std::vector<NodeKey>>& neighbours,
           std::set<int>& reached) {
    std::set<NodeKey> seen = {{AutoType, from}};
    std::vector<NodeKey> edge(seen.begin(), seen.end());
    for (; !edge.empty(); --depth) {
        std::vector<NodeKey> next;
        while (!edge.empty()) {
            const NodeKey node = edge.back();
            edge.pop_back();
            if (node.typeID == AutoType) {
                reached.insert(node.number);
            }
            const auto found = neighbours.find(node);
            if (depth <= 0 || found == neighbours.end()) {
                continue;
            }
            for (const NodeKey& neighbour : found->second) {
                if (seen.insert(neighbour).second) {
                    (neighbour.typeID == AutoType ? next : edge).push_back(neighbour);
                }
            }
        }
        edge = std::move(next);
    }
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
           (reference.typeID == AutoType || !registered.contains(reference.Key()));
}

bool CallFlow::LeadsOn(const Reference& reference) const {
    return reference.typeID == AutoType ? nodes.contains(reference.number) : others.contains(reference.Key());
}

std::string CallFlow::LabelOf(const Reference& reference) const {
    if (reference.typeID == AutoType && LeadsOn(reference)) {
        return nodes.at(reference.number).label.value_or("");
    }
    const auto found = registered.find(reference.Key());
    return found == registered.end() ? std::string() : found->second.label;
}

std::vector<Link> CallFlow::LinksFrom(const NodeKey& node) const {
    return node.typeID == AutoType ? LinksOf(nodes.at(node.number)) : others.at(node);
}

bool IsWay(const StoredReference& reference, int typeID) {
    return RefersToNode(typeID) && NodeTypeOf(typeID) != MessageType && !IsPlayed(reference.Column());
}

CallFlow ReadCallFlow(DataBase& dataBase, History& history, Partition partition) {
    PartitionFindings found;
    return ReadCallFlow(dataBase, history, partition, found, [](const StoredReference&, int) {});
}

CallFlow
ReadCallFlow(DataBase& dataBase, History& history, Partition partition, PartitionFindings& found,
             const std::function<void(const StoredReference& reference, int typeID)>& takeReference) {
    CallFlow flow;
    flow.partition = partition;
    std::vector<StoredReference> ways;
    const CheckReader reader = {[&](const NodeKey& node, std::string_view type, const std::string& label) {
                                    flow.registered[node] = {std::string(type), label};
                                },
                                [&](int number, const AutoNode& node) { flow.nodes.emplace(number, node); },
                                [&](const StoredReference& reference, int typeID) {
                                    takeReference(reference, typeID);
                                    if (IsWay(reference, typeID)) {
                                        ways.push_back(reference);
                                        ways.back().typeID = typeID;
                                    }
                                }};
    found = CheckPartition(dataBase, history, partition, reader);
    AddRemarks(flow, found.findings);
    flow.others = OtherLinks(std::move(ways));
    LeaveLeadingOn(flow);
    return flow;
}

std::set<int> Surroundings(const CallFlow& flow, int number, int depth) {
    std::map<NodeKey, std::vector<NodeKey>> onwards;
    std::map<NodeKey, std::vector<NodeKey>> backwards;
    const auto add = [&](const NodeKey& from) {
        for (const Link& link : flow.LinksFrom(from)) {
            if (flow.LeadsOn(link.target)) {
                onwards[from].push_back(link.target.Key());
                backwards[link.target.Key()].push_back(from);
            }
        }
    };
    for (const auto& [from, node] : flow.nodes) {
        add({AutoType, from});
    }
    for (const auto& [from, links] : flow.others) {
        add(from);
    }
    std::set<int> reached;
    for (const auto* neighbours : {&onwards, &backwards}) {
        Reach(number, depth, *neighbours, reached);
    }
    return reached;
}

} // namespace KAL_AUTO_Node
