#include "nodes/NodeJson.h"

#include <type_traits>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

template <class Value>
Json OrNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

[[noreturn]] void Refuse(const char* name, const Json& member) {
    throw Json::type_error::create(302, std::string("unexpected ") + name + ": " + member.type_name(),
                                   &member);
}

// The library would turn another kind of value into a number, and cut one that is too large.
template <class Value>
Value MemberOf(const Json& document, const char* name) {
    const Json& member = document.at(name);
    if constexpr (std::is_integral_v<Value>) {
        const bool fits = member.is_number_unsigned() ? std::in_range<Value>(member.get<std::uint64_t>())
                                                      : member.is_number_integer() &&
                                                            std::in_range<Value>(member.get<std::int64_t>());
        if (!fits) {
            Refuse(name, member);
        }
    }
    return member.get<Value>();
}

template <class Value>
void Take(const Json& document, const char* name, std::optional<Value>& value) {
    value = document.at(name).is_null() ? std::nullopt : std::optional(MemberOf<Value>(document, name));
}

// Anything can be gone through, as if it were a list.
const Json& ListIn(const Json& document, const char* name) {
    const Json& member = document.at(name);
    if (!member.is_array()) {
        Refuse(name, member);
    }
    return member;
}

struct SettingMember {
    const char* name;
    std::optional<std::int64_t> Settings::*value;
};

constexpr SettingMember SettingMembers[] = {{"numberOfDigits", &Settings::numberOfDigits},
                                            {"retryLimit", &Settings::retryLimit},
                                            {"selectionTimeout", &Settings::selectionTimeout},
                                            {"digitTimeout", &Settings::digitTimeout}};

constexpr const char* TerminatingDigitMember = "terminatingDigit";

void AddTo(Json& document, const Reference& reference, Labels labels) {
    document["typeID"] = reference.typeID;
    document["type"] = reference.type;
    document["number"] = reference.number;
    if (labels == Labels::Read) {
        document["label"] = reference.label;
    }
}

Reference ReferenceFrom(const Json& document) {
    return {MemberOf<int>(document, "typeID"), MemberOf<std::string>(document, "type"),
            MemberOf<int>(document, "number"), document.value("label", std::string())};
}

Json ToJson(const Settings& settings) {
    Json document = Json::object();
    for (const auto& [name, value] : SettingMembers) {
        document[name] = OrNull(settings.*value);
    }
    document[TerminatingDigitMember] = OrNull(settings.terminatingDigit);
    return document;
}

Settings SettingsFrom(const Json& document) {
    Settings settings;
    for (const auto& [name, value] : SettingMembers) {
        Take(document, name, settings.*value);
    }
    Take(document, TerminatingDigitMember, settings.terminatingDigit);
    return settings;
}

} // namespace

Json ToJson(Partition partition, std::int16_t number, const AutoNode& node, Labels labels) {
    Json prompts = Json::array();
    for (const Prompt& prompt : node.prompts) {
        Json row{{"sequence", prompt.sequence}};
        AddTo(row, prompt.target, labels);
        prompts.push_back(std::move(row));
    }
    Json actions = Json::array();
    for (const Action& action : node.actions) {
        Json row{{"sequence", action.sequence}, {"low", OrNull(action.low)}, {"high", OrNull(action.high)}};
        AddTo(row, action.target, labels);
        actions.push_back(std::move(row));
    }
    Json branches = Json::object();
    for (std::size_t i = 0; i < BranchRules.size(); ++i) {
        AddTo(branches[BranchRules[i].label], node.branches[i], labels);
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

AutoNode NodeFromJson(const Json& document) {
    AutoNode node;
    node.type = MemberOf<std::string>(document, "type");
    Take(document, "label", node.label);
    node.settings = SettingsFrom(document.at("settings"));
    for (const Json& row : ListIn(document, "prompts")) {
        node.prompts.push_back({MemberOf<int>(row, "sequence"), ReferenceFrom(row)});
    }
    for (const Json& row : ListIn(document, "actions")) {
        Action action{MemberOf<int>(row, "sequence"), ReferenceFrom(row), {}, {}};
        Take(row, "low", action.low);
        Take(row, "high", action.high);
        node.actions.push_back(std::move(action));
    }
    for (std::size_t i = 0; i < BranchRules.size(); ++i) {
        node.branches[i] = ReferenceFrom(document.at("branches").at(BranchRules[i].label));
    }
    return node;
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
