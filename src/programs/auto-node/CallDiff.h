#pragma once

#include "auto-node/CommandLine.h"
#include "auto-node/StoreChoice.h"
#include "calls/CallChanges.h"

#include <functional>
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
    bool exitCode = false;

    [[nodiscard]] int Status(bool differs) const { return exitCode && differs ? 1 : 0; }
};

// --calls and its --json, and --exit-code. Of a command that changes something, only with its dry run.
void AddCalls(const CommandArguments& command, CallOptions& options,
              const std::optional<Option>& dryRun = std::nullopt);

// An AUTO node as it was and as it is then; nothing for no node.
struct NodeStates {
    NodePlace place;
    std::optional<AutoNode> before;
    std::optional<AutoNode> after;
};

// --exit-code, with that option where it is one.
void AddExitCode(const CommandArguments& command, bool& exitCode, const std::optional<Option>& dryRun);
// A command that takes it: what fails exits with 2 then, as 1 says that something differs.
[[nodiscard]] std::function<int(const StoreChoice&)> ByStatus(const bool& exitCode,
                                                              std::function<int(const StoreChoice&)> run);

// The three below tell whether callers notice anything.

// What callers notice of partitions in which those nodes change, as the store is otherwise.
bool PrintCalls(DataBase& dataBase, const std::vector<NodeStates>& nodes, bool json);
// Of a plan that is not carried out.
bool PrintCalls(DataBase& dataBase, Partition partition, const RepointPlan& plan, bool json);
// Of one node in the place of another, whatever leads there.
bool PrintCalls(DataBase& dataBase, const NodePlace& place, const std::optional<AutoNode>& before,
                const std::optional<AutoNode>& after, bool json);

} // namespace KAL_AUTO_Node
