#include "exchange/ExchangeText.h"

#include "exchange/ExchangeFormat.h"
#include "nodes/JsonText.h"

namespace KAL_AUTO_Node::Exchange {

std::string Head(std::optional<Partition> scope) {
    std::string text;
    const auto member = [&](const char* name, const std::string& value) {
        text += (text.empty() ? "{\"" : ", \"") + std::string(name) + "\": " + value;
    };
    std::string format;
    AppendJsonText(format, Format);
    member(FormatMember, format);
    member(VersionMember, std::to_string(Version));
    if (scope) {
        member(ConfigMember, std::to_string(scope->config));
        member(PartitionMember, std::to_string(scope->number));
    }
    member(TablesMember, "{\n");
    return text;
}

std::string TableHead(const StoreTable& table) { return '"' + table.name + "\": ["; }

void AppendRow(std::string& text, const StoreTable& table, const StoreRow& row) {
    const char* before = "{\"";
    for (std::size_t at = 0; at < table.columns.size(); ++at) {
        text += before;
        before = ", \"";
        text += table.columns[at].name;
        text += "\": ";
        if (!row[at]) {
            text += "null";
        } else if (table.columns[at].number) {
            text += *row[at];
        } else {
            AppendJsonText(text, *row[at]);
        }
    }
    text += '}';
}

} // namespace KAL_AUTO_Node::Exchange
