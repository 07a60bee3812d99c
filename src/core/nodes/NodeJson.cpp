#include "nodes/NodeJson.h"

#include <type_traits>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

[[noreturn]] void Refuse(const char* name, const Json& member) {
    throw Json::type_error::create(302, std::string("unexpected ") + name + ": " + member.type_name(),
                                   &member);
}

// The library would turn another kind of value into a number, and cut one that is too large.
template <class Value>
Value MemberOf(const Json& document, const char* name) {
    const auto found = document.find(name);
    if (found == document.end()) {
        return Value();
    }
    const Json& member = *found;
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
    const auto found = document.find(name);
    const bool given = found != document.end() && !found->is_null();
    value = given ? std::optional(MemberOf<Value>(document, name)) : std::nullopt;
}

// A list or an object; empty where it is missing. Anything can be gone through as if it were one.
Json StructureIn(const Json& document, const char* name, Json::value_t kind) {
    const auto found = document.find(name);
    if (found == document.end()) {
        Json empty(kind);
        return empty;
    }
    if (found->type() != kind) {
        Refuse(name, *found);
    }
    return *found;
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

void Write(JsonWriter& json, const Settings& settings) {
    json.Begin('{');
    for (const auto& [name, value] : SettingMembers) {
        json.Member(name, settings.*value);
    }
    json.Member(TerminatingDigitMember, settings.terminatingDigit);
    json.End('}');
}

// Within an object.
void Write(JsonWriter& json, const Reference& reference, Labels labels) {
    json.Member("typeID", reference.typeID);
    json.Member("type", reference.type);
    json.Member("number", reference.number);
    if (labels == Labels::Read) {
        json.Member("label", reference.label);
    }
}

// Each list's rows have members of their own between the number and the node referred to.
template <class Row, class WriteOwn>
void WriteRows(JsonWriter& json, const char* name, const std::vector<Row>& rows, Labels labels,
               WriteOwn writeOwn) {
    json.Name(name);
    json.Begin('[');
    for (const Row& row : rows) {
        json.Begin('{');
        json.Member("sequence", row.sequence);
        writeOwn(row);
        Write(json, row.target, labels);
        json.End('}');
    }
    json.End(']');
}

Reference ReferenceFrom(const Json& document) {
    return {MemberOf<int>(document, "typeID"), MemberOf<std::string>(document, "type"),
            MemberOf<int>(document, "number"), document.value("label", std::string())};
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

void WriteNode(JsonWriter& json, const NodePlace& place, const AutoNode& node, Labels labels) {
    json.Begin('{');
    json.Member("config", place.partition.config);
    json.Member("partition", place.partition.number);
    json.Member("number", place.number);
    json.Member("type", node.type);
    json.Member("label", node.label);
    json.Name("settings");
    Write(json, node.settings);
    WriteRows(json, "prompts", node.prompts, labels, [](const Prompt&) {});
    WriteRows(json, "actions", node.actions, labels, [&](const Action& action) {
        json.Member("low", action.low);
        json.Member("high", action.high);
    });
    json.Name("branches");
    json.Begin('{');
    for (std::size_t i = 0; i < Branches.size(); ++i) {
        json.Name(Branches[i].label);
        json.Begin('{');
        Write(json, node.branches[i], labels);
        json.End('}');
    }
    json.End('}');
    json.End('}');
}

AutoNode NodeFromJson(const Json& document) {
    if (!document.is_object()) {
        Refuse("node", document);
    }
    AutoNode node;
    node.type = MemberOf<std::string>(document, "type");
    Take(document, "label", node.label);
    node.settings = SettingsFrom(StructureIn(document, "settings", Json::value_t::object));
    for (const Json& row : StructureIn(document, "prompts", Json::value_t::array)) {
        node.prompts.push_back({MemberOf<int>(row, "sequence"), ReferenceFrom(row)});
    }
    for (const Json& row : StructureIn(document, "actions", Json::value_t::array)) {
        Action action{MemberOf<int>(row, "sequence"), ReferenceFrom(row), {}, {}};
        Take(row, "low", action.low);
        Take(row, "high", action.high);
        node.actions.push_back(std::move(action));
    }
    const Json branches = StructureIn(document, "branches", Json::value_t::object);
    for (std::size_t i = 0; i < Branches.size(); ++i) {
        node.branches[i] = ReferenceFrom(StructureIn(branches, Branches[i].label, Json::value_t::object));
    }
    return node;
}

void WriteSummary(JsonWriter& json, const AutoNodeSummary& node) {
    json.Begin('{');
    json.Member("number", node.number);
    json.Member("label", node.label);
    json.Name("settings");
    Write(json, node.settings);
    json.Member("prompts", node.prompts);
    json.Member("actions", node.actions);
    json.End('}');
}

void WriteCounts(JsonWriter& json, const PartitionCounts& counts) {
    json.Begin('{');
    json.Member("config", counts.partition.config);
    json.Member("partition", counts.partition.number);
    json.Member("autoNodes", counts.autoNodes);
    json.Member("registeredNodes", counts.registeredNodes);
    json.End('}');
}

} // namespace KAL_AUTO_Node
