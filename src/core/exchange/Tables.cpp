#include "exchange/Tables.h"

#include "platform/FoldCase.h"
#include "platform/NumericValue.h"
#include "platform/WholeNumber.h"
#include "store/Scripts.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <stdexcept>

namespace KAL_AUTO_Node {

namespace {

// Reads the one form in which the schema is written: a line a column, the key at the end.
class SchemaReader {
  public:
    std::vector<StoreTable> Read() {
        std::istringstream schema(SchemaScript);
        for (std::string line; std::getline(schema, line);) {
            const bool inside = line.starts_with(' ');
            std::ranges::replace_if(
                line, [](char c) { return c == '(' || c == ',' || c == ')'; }, ' ');
            std::istringstream text(line);
            std::vector<std::string> words;
            for (std::string word; text >> word;) {
                words.push_back(std::move(word));
            }
            Take(words, inside);
        }
        return std::move(tables_);
    }

  private:
    void Take(const std::vector<std::string>& words, bool inside) {
        if (words.size() > 2 && words[0] == "CREATE" && words[1] == "TABLE") {
            tables_.push_back({words[2], {}, {}, false});
        } else if (inside && words.size() > 2 && words[0] == "PRIMARY" && words[1] == "KEY") {
            for (auto name = words.begin() + 2; name != words.end(); ++name) {
                tables_.back().key.push_back(FindColumn(tables_.back(), *name).value());
            }
            tables_.back().partitioned = words[2] == "ConfigID" || words[2] == "Config_ID";
        } else if (inside && words.size() > 1) {
            tables_.back().columns.push_back({words[0], words[1] == "INTEGER", words.size() > 2});
        }
    }

    std::vector<StoreTable> tables_;
};

// The whole number that a text is, but for blanks around it.
std::optional<std::int32_t> NumberIn(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    text = text.substr(first, text.find_last_not_of(' ') - first + 1);
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    return WholeNumber<std::int32_t>(text);
}

} // namespace

std::span<const StoreTable> StoreTables() {
    static const std::vector<StoreTable> tables = SchemaReader().Read();
    return tables;
}

const StoreTable* FindTable(std::string_view name) {
    static const auto byName = [] {
        std::map<std::string, const StoreTable*> tables;
        for (const StoreTable& table : StoreTables()) {
            tables.emplace(FoldAscii(table.name), &table);
        }
        return tables;
    }();
    const auto found = byName.find(FoldAscii(name));
    return found == byName.end() ? nullptr : found->second;
}

std::optional<std::size_t> FindColumn(const StoreTable& table, std::string_view name) {
    const auto found = std::ranges::find_if(
        table.columns, [name](const StoreColumn& column) { return SameInAscii(column.name, name); });
    return found == table.columns.end()
               ? std::nullopt
               : std::optional(static_cast<std::size_t>(found - table.columns.begin()));
}

std::string KeyText(const StoreTable& table, const StoreRow& row) {
    std::string text;
    for (const std::size_t column : table.key) {
        text += text.empty() ? "" : ", ";
        text += table.columns[column].name;
        text += ' ';
        text += row[column].value_or("Null");
    }
    return text;
}

StoreKey RowKeyOf(const StoreTable& table, const StoreRow& row) {
    StoreKey key{};
    for (std::size_t i = 0; i < table.key.size(); ++i) {
        const auto& field = row[table.key[i]];
        key.at(i) = field ? NumericValue(*field) : 0;
    }
    return key;
}

std::optional<std::string> WhyNot(const StoreColumn& column, std::optional<std::string>& value) {
    if (!value) {
        return column.required ? std::optional<std::string>("is Null") : std::nullopt;
    }
    if (column.number) {
        const auto number = NumberIn(*value);
        if (!number) {
            return "\"" + *value + "\" is no whole number of 32 bits";
        }
        *value = std::to_string(*number);
    } else if (value->find('\0') != std::string::npos) {
        return "holds a NUL, which not every store can";
    }
    return std::nullopt;
}

} // namespace KAL_AUTO_Node
