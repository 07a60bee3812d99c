#pragma once

#include "calls/EntryText.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

struct CallMap;

// By what an outcome comes about: "action 3", "Invalid", "asked again".
[[nodiscard]] std::string ByText(const Menu& menu, const Outcome& outcome);

// Members of a JSON document that tell outcomes, and a target.
void AddJson(nlohmann::ordered_json& document, const CallMap& map, const Menu& menu,
             const Outcomes& outcomes);
[[nodiscard]] nlohmann::ordered_json ToJson(const CallMap& map, const Target& target);

} // namespace KAL_AUTO_Node
