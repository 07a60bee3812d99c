#include "exchange/RowParts.h"

#include "nodes/NodeTypes.h"
#include "nodes/Settings.h"
#include "nodes/Slots.h"
#include "store/ReferenceColumns.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace KAL_AUTO_Node {

namespace {

constexpr std::array<std::string_view, 3> ReferenceEnds = {"NodeTypeID", "NodeType", "NodeNumber"};
constexpr const char* Register = "Node_General_Pool";
constexpr const char* Prompts = "Detail_AUTO_Prompts";
constexpr const char* Actions = "Detail_AUTO_Action";

// The word that the columns of one reference begin with; the column's name where it is none of a reference.
std::string_view Beginning(std::string_view column) {
    for (const std::string_view end : ReferenceEnds) {
        if (column.ends_with(end) && column != end) {
            return column.substr(0, column.size() - end.size());
        }
    }
    return column;
}

std::string NameOf(const StoreTable& table, std::string_view word) {
    if (word == "NodeDescription") {
        return table.name == Register ? "label" : "label in its record";
    }
    if (table.name == "Node_AUTO") {
        const auto setting = std::ranges::find(SettingFields, word, &SettingField::column);
        if (setting != SettingFields.end()) {
            return setting->name;
        }
        const auto branch = std::ranges::find(Branches, word, &Branch::column);
        if (branch != Branches.end()) {
            return std::string("branch ") + branch->label;
        }
        if (word == "TerminatingDigit") {
            return "terminating digit";
        }
    }
    return table.name + '.' + std::string(word);
}

} // namespace

std::vector<RowPart> PartsOf(const StoreTable& table) {
    std::vector<RowPart> parts;
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        if (std::ranges::find(table.key, column) != table.key.end()) {
            continue;
        }
        std::string name = NameOf(table, Beginning(table.columns[column].name));
        const auto part = std::ranges::find(parts, name, &RowPart::name);
        if (part == parts.end()) {
            parts.push_back({std::move(name), {column}});
        } else {
            part->columns.push_back(column);
        }
    }
    return parts;
}

std::string PartText(const RowPart& part, const StoreTable& table, const StoreRow& row) {
    std::string text;
    for (const std::size_t column : part.columns) {
        // The type stands there by its name, too.
        if (part.columns.size() > 1 && table.columns[column].name.ends_with("NodeTypeID")) {
            continue;
        }
        const auto& value = row[column];
        const bool quoted = part.columns.size() == 1 && !table.columns[column].number;
        text += text.empty() ? "" : " ";
        text += !value ? "none" : quoted ? '"' + *value + '"' : *value;
    }
    return text;
}

bool HoldsLists(const StoreTable& table) { return table.name.starts_with("Detail_"); }

ListKind KindOf(const StoreTable& table) {
    return table.name == Actions ? ListKind::Named : ListKind::Ordered;
}

ListedRow ListedOf(const StoreTable& table, const StoreRow& row) {
    const auto at = [&](const char* column) { return row[FindColumn(table, column).value()]; };
    ListedRow listed;
    for (const RowPart& part : PartsOf(table)) {
        for (const std::size_t column : part.columns) {
            listed.content += row[column] ? '=' + *row[column] + '\n' : "\n";
        }
    }
    listed.name = table.name == Actions
                      ? ListedOf(Action{0, {}, at("DTMFRangeLow"), at("DTMFRangeHigh")}).name
                      : listed.content;
    listed.standsForNone = table.name == Prompts && at("NodeTypeID") == std::to_string(NumberlessType);
    return listed;
}

std::string RowsName(const StoreTable& table) {
    if (HoldsLists(table)) {
        return table.name.ends_with("_Prompts")  ? "prompts"
               : table.name.ends_with("_Action") ? "actions"
                                                 : "list";
    }
    return table.name == Register ? "register" : "record";
}

bool HoldsNodes(const StoreTable& table) {
    return table.partitioned && (table.name.starts_with("Node_") || HoldsLists(table)) &&
           FindColumn(table, "ConfigID");
}

StoreKey NodeKeyOf(const StoreTable& table, const StoreKey& key) {
    const auto at = [&](const char* column) {
        const auto found = std::ranges::find(table.key, FindColumn(table, column).value());
        return key.at(static_cast<std::size_t>(found - table.key.begin()));
    };
    if (HoldsLists(table)) {
        const auto references = AllReferenceColumns();
        const auto found = std::ranges::find(references, table.name, &ReferenceColumn::table);
        return {key[0], key[1], found->holderTypeID, at("NodeMasterID")};
    }
    return {key[0], key[1], at("NodeTypeID"), at("NodeNumber")};
}

bool IsDayOfChange(const StoreColumn& column) { return column.name == "DateModified"; }

} // namespace KAL_AUTO_Node
