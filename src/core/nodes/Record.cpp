#include "nodes/Record.h"

#include "platform/NumericValue.h"

namespace KAL_AUTO_Node {

std::optional<std::string> OptionalText(const ResultSet& row, std::string_view column) {
    const auto field = row.Field(column);
    return field ? std::optional(std::string(*field)) : std::nullopt;
}

Settings ReadSettings(const ResultSet& row) {
    Settings settings;
    settings.terminatingDigit = OptionalText(row, "TerminatingDigit");
    for (const SettingField& rule : SettingFields) {
        const auto stored = row.Field(rule.column);
        settings.*rule.value = stored ? std::optional(NumericValue(*stored)) : std::nullopt;
    }
    return settings;
}

void ReadRecord(const ResultSet& row, AutoNode& node) {
    node.type = row.Field("NodeType").value_or("");
    node.label = OptionalText(row, "NodeDescription");
    node.settings = ReadSettings(row);
}

} // namespace KAL_AUTO_Node
