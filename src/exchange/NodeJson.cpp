#include "exchange/NodeJson.h"

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

template <class Value>
Json OrNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

Json ToJson(const Reference& reference) {
    return {{"typeID", reference.typeID},
            {"type", reference.type},
            {"number", reference.number},
            {"label", reference.label}};
}

Json ToJson(const Settings& settings) {
    return {{"numberOfDigits", OrNull(settings.numberOfDigits)},
            {"terminatingDigit", OrNull(settings.terminatingDigit)},
            {"retryLimit", OrNull(settings.retryLimit)},
            {"selectionTimeout", OrNull(settings.selectionTimeout)},
            {"digitTimeout", OrNull(settings.digitTimeout)}};
}

} // namespace

Json ToJson(Partition partition, std::int16_t number, const AutoNode& node) {
    Json prompts = Json::array();
    for (const Prompt& prompt : node.prompts) {
        prompts.push_back(ToJson(prompt.target));
    }
    Json actions = Json::array();
    for (const Action& action : node.actions) {
        Json entry{{"low", OrNull(action.low)}, {"high", OrNull(action.high)}};
        entry.update(ToJson(action.target));
        actions.push_back(std::move(entry));
    }
    Json branches = Json::object();
    for (std::size_t i = 0; i < BranchRules.size(); ++i) {
        branches[BranchRules[i].label] = ToJson(node.branches[i]);
    }
    return {{"config", partition.config},
            {"partition", partition.number},
            {"number", number},
            {"type", node.type},
            {"label", OrNull(node.label)},
            {"settings", ToJson(node.settings)},
            {"prompts", std::move(prompts)},
            {"actions", std::move(actions)},
            {"branches", std::move(branches)}};
}

Json ToJson(const AutoNodeSummary& node) {
    return {{"number", node.number},
            {"label", OrNull(node.label)},
            {"settings", ToJson(node.settings)},
            {"prompts", node.prompts},
            {"actions", node.actions}};
}

Json ToJson(const PartitionCounts& partition) {
    return {{"config", partition.partition.config},
            {"partition", partition.partition.number},
            {"autoNodes", partition.autoNodes},
            {"registeredNodes", partition.registeredNodes}};
}

std::string JsonText(const Json& document) {
    return document.dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace KAL_AUTO_Node
