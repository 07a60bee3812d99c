#pragma once

#include "auto-node/CommandLine.h"
#include "calls/CallChanges.h"

#include <optional>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class TypeNames;
struct RepointPlan;

// What a command that compares takes, so that it tells the differences in calls.
struct CallOptions {
    bool calls = false;
    bool json = false;
};

// --calls and its --json. Of a command that changes something, only with its dry run.
void AddCalls(const CommandArguments& command, CallOptions& options,
              const std::optional<Option>& dryRun = std::nullopt);

// An AUTO node as it was and as it is then; nothing for no node.
struct NodeStates {
    NodePlace place;
    std::optional<AutoNode> before;
    std::optional<AutoNode> after;
};

// What callers notice of partitions in which those nodes change, as the store is otherwise.
void PrintCalls(DataBase& dataBase, const std::vector<NodeStates>& nodes, bool json);
// Of a plan that is not carried out.
void PrintCalls(DataBase& dataBase, Partition partition, const RepointPlan& plan, bool json);
// Of one node in the place of another, whatever leads there.
void PrintCalls(DataBase& dataBase, const NodePlace& place, const std::optional<AutoNode>& before,
                const std::optional<AutoNode>& after, bool json);

} // namespace KAL_AUTO_Node
