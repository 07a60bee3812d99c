#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class History;
struct PartitionFindings;
struct StoredReference;

// What is to be said about an AUTO node beside what it holds.
struct Remark {
    bool error = false; // else a warning
    std::string text;
};

// A node that is there, of whatever type.
struct RegisteredNode {
    std::string type; // its name
    std::string label;
};

// All ways from a node to one other, either by what is keyed or by exceptions.
struct Link {
    Reference target;
    std::string name; // the target as it is shown
    bool exception = false;
    // The digits, of nodes of other types the rows; or the exceptions' names. In the node's order.
    std::vector<std::string> entries;
};

// A partition's AUTO nodes, and what they lead to.
struct CallFlow {
    Partition partition;
    std::map<int, AutoNode> nodes; // by number, the template among them
    std::map<NodeKey, RegisteredNode> registered;
    // Of the nodes of other types from which AUTO nodes are reached, the ways to other nodes than messages.
    std::map<NodeKey, std::vector<Link>> others;
    std::map<int, std::vector<Remark>> remarks; // by the number of the AUTO node

    // Whether the reference should lead to a node and there is none.
    [[nodiscard]] bool IsMissing(const Reference& reference) const;
    // Whether it leads to a node that is there and of which the ways are known.
    [[nodiscard]] bool LeadsOn(const Reference& reference) const;
    // Of the node that the reference leads to; empty where it has none.
    [[nodiscard]] std::string LabelOf(const Reference& reference) const;
    // Of a node of which the ways are known: those by digits or rows first, in their order. Exceptions that
    // lead nowhere are left out.
    [[nodiscard]] std::vector<Link> LinksFrom(const NodeKey& node) const;
};

// Reads the whole partition once, with what is found wrong in it.
[[nodiscard]] CallFlow ReadCallFlow(DataBase& dataBase, History& history, Partition partition);
// With what was found, and each reference of a node of another type, with the ID of the type that it refers
// to, as the check hands them over.
[[nodiscard]] CallFlow
ReadCallFlow(DataBase& dataBase, History& history, Partition partition, PartitionFindings& found,
             const std::function<void(const StoredReference& reference, int typeID)>& takeReference);

// Whether a call goes on by a reference to a type from there, and does not only hear something.
[[nodiscard]] bool IsWay(const StoredReference& reference, int typeID);

// The AUTO nodes within so many steps from one, onwards and backwards, itself among them. A step goes to the
// next AUTO node, over whatever nodes of other types.
[[nodiscard]] std::set<int> Surroundings(const CallFlow& flow, int number, int depth);

} // namespace KAL_AUTO_Node
