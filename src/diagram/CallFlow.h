#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class History;

// What is to be said about an AUTO node beside what it holds.
struct Remark {
    bool error = false; // else a warning
    std::string text;
};

// A partition's AUTO nodes, and which nodes there are that they may lead to.
struct CallFlow {
    Partition partition;
    std::map<int, AutoNode> nodes;                         // by number, the template among them
    std::map<std::pair<int, int>, std::string> registered; // labels by type and number
    std::map<int, std::vector<Remark>> remarks;            // by the number of the AUTO node

    // Whether the reference should lead to a node and there is none.
    [[nodiscard]] bool IsMissing(const Reference& reference) const;
    // Whether it leads to an AUTO node that is there.
    [[nodiscard]] bool LeadsOn(const Reference& reference) const;
    // Of the node that the reference leads to; empty where it has none.
    [[nodiscard]] std::string LabelOf(const Reference& reference) const;
};

// Reads the whole partition, with what is found wrong in it.
[[nodiscard]] CallFlow ReadCallFlow(DataBase& dataBase, History& history, Partition partition);

// All ways from a node to one other, either by digits or by exceptions.
struct Link {
    Reference target;
    std::string name; // the target as it is shown
    bool exception = false;
    std::vector<std::string> entries; // the digits, or the exceptions' names, in the node's order
};

// By digits first, in the order of the node's rows. Exceptions that lead nowhere are left out.
[[nodiscard]] std::vector<Link> LinksOf(const AutoNode& node);

// The nodes within so many steps from one, onwards and backwards, itself among them.
[[nodiscard]] std::set<int> Surroundings(const CallFlow& flow, int number, int depth);

} // namespace KAL_AUTO_Node
