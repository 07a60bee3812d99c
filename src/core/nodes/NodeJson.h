#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"
#include "nodes/JsonText.h"
#include "nodes/Overview.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

namespace KAL_AUTO_Node {

// Nodes as JSON, members in one fixed order; docs/json.md tells the form. What is Null in the store is null.
// Labels of the nodes referred to are given where they were read.
void WriteNode(JsonWriter& json, const NodePlace& place, const AutoNode& node, Labels labels);
// The node of such a document; members that are missing have their defaults, unknown ones say nothing here.
// Throws nlohmann::json::exception for a document of another form.
[[nodiscard]] AutoNode NodeFromJson(const nlohmann::ordered_json& document);

void WriteSummary(JsonWriter& json, const AutoNodeSummary& node);
void WriteCounts(JsonWriter& json, const PartitionCounts& counts);

} // namespace KAL_AUTO_Node
