#pragma once

#include "nodes/Identity.h"
#include "nodes/References.h"

#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class History;

// A node, and the one that takes its place.
struct Replacement {
    NodeKey from;
    NodeKey to;
};

// Those that a text tells, "MSG 6 -> MSG 16" a line; blank lines and those that begin with # are for people.
// Raises InvalidProcedureCall, with the line's number, for another line and for a second target of a node.
[[nodiscard]] std::vector<Replacement> ReplacementsOf(std::istream& text, const TypeNames& names);

// All that has to change so that nodes take others' places, and what stands in the way.
struct RepointPlan {
    struct Change {
        StoredReference from;
        int typeID = 0; // what it becomes; a message is referred to under the same of its types as before
        std::string type;
        int number = 0;
    };

    std::vector<Change> changes;        // in the order of their holders
    std::vector<std::string> obstacles; // each for people; none where it can be done

    // Those that have the references.
    [[nodiscard]] std::set<NodeKey> Holders() const;
};

// What is true of a step of which this is a part.
struct RepointTerms {
    bool newAreMade = false;        // the nodes that take the places are made by it
    std::optional<NodeKey> without; // goes, so that what it refers to stays as it is
};

// Reads only. The nodes whose places are taken need not exist, the new ones have to. All take effect
// together, so that two can change places. What the places of AUTO nodes may refer to is known one by one; of
// nodes of other types it is only known which types they contain somewhere, so that only a type that they
// contain nowhere stands in the way.
[[nodiscard]] RepointPlan PlanRepoint(DataBase& dataBase, History& history, const TypeNames& names,
                                      Partition partition, std::span<const Replacement> replacements,
                                      const RepointTerms& terms = {});

// Plans it and changes everything in one step, for others as for the disk; of each AUTO node the step is a
// version of its history. Nothing is changed where the plan has obstacles. The date is today's as dates are
// stored.
RepointPlan Repoint(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
                    std::span<const Replacement> replacements, const std::string& date);

// Changes what was planned in the same transaction, which this is part of; keeps the AUTO nodes among the
// holders as they were, and those besides. Raises StoreFailure where something is not as planned.
void CarryOut(DataBase& dataBase, History& history, Partition partition, const RepointPlan& plan,
              const char* work, const std::string& date, std::set<NodePlace> besides = {});

// Whether a change of one of the AUTO nodes did not get to its end, or is not over yet: each for people.
[[nodiscard]] std::vector<std::string> UnfinishedSaves(DataBase& dataBase, History& history,
                                                       const TypeNames& names, Partition partition,
                                                       const std::set<int>& numbers);

} // namespace KAL_AUTO_Node
