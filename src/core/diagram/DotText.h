#pragma once

#include "diagram/CallFlow.h"

#include <functional>
#include <optional>
#include <set>
#include <string>

namespace KAL_AUTO_Node {

// The AUTO nodes that are shown as a graph in the language of Graphviz's dot, with the nodes of other types
// over which calls come to them. Up to DetailLimit of them come with what else they lead to and with
// their prompts, more only with counts of those. What is missing is shown in any case.
[[nodiscard]] std::string DotText(const CallFlow& flow, const std::set<int>& shown,
                                  std::optional<int> emphasized);

inline constexpr std::size_t DetailLimit = 60;

// The place of a page at which a node stands; empty where it stands at none.
using PlaceOfNode = std::function<std::string(const NodeKey& node)>;

// The same for a page: what stands at a place leads there.
[[nodiscard]] std::string DotText(const CallFlow& flow, const std::set<int>& shown, bool detailed,
                                  const PlaceOfNode& placeOf);

} // namespace KAL_AUTO_Node
