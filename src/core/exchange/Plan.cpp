#include "exchange/Plan.h"

#include "exchange/ExchangeFormat.h"
#include "exchange/ExchangeText.h"
#include "exchange/RowWrites.h"
#include "history/History.h"
#include "nodes/JsonText.h"
#include "platform/RuntimeError.h"
#include "store/Connection.h"
#include "store/DataBase.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::json;

constexpr const char* PlanFormat = "auto-node-plan";
constexpr int PlanVersion = 1;
constexpr std::string_view SumStart = "\"sum\": \"";

enum class ChangeKind { Removal, Change, Addition, Rest };

constexpr std::array<std::pair<ChangeKind, const char*>, 4> PlanSections = {
    {{ChangeKind::Removal, "removals"},
     {ChangeKind::Change, "changes"},
     {ChangeKind::Addition, "additions"},
     {ChangeKind::Rest, "unchanged"}}};

ChangeKind ChangeKindOf(const RowChange& change) {
    return !change.after                   ? ChangeKind::Removal
           : !change.before                ? ChangeKind::Addition
           : change.before == change.after ? ChangeKind::Rest
                                           : ChangeKind::Change;
}

// It tells a text that somebody has edited; nobody is kept from forging one.
std::string SumOf(std::string_view text) {
    std::uint64_t sum = 14695981039346656037U;
    for (const char byte : text) {
        sum = (sum ^ static_cast<unsigned char>(byte)) * 1099511628211U;
    }
    std::array<char, 20> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(sum));
    return digits.data();
}

[[noreturn]] void FailPlan(const std::string& what) {
    throw RuntimeError(ErrorNumber::StoreNotRecognized, what);
}

std::optional<std::string> FieldIn(const Json& value) {
    if (value.is_null()) {
        return std::nullopt;
    }
    if (value.is_object()) {
        return BytesOfDigits(value.at(BytesMember).get<std::string>()).value();
    }
    return value.is_string() ? value.get<std::string>() : value.dump();
}

std::optional<StoreRow> RowIn(const StoreTable& table, const Json& change, const char* name) {
    const auto row = change.find(name);
    if (row == change.end()) {
        return std::nullopt;
    }
    StoreRow fields;
    for (const StoreColumn& column : table.columns) {
        auto& field = fields.emplace_back(FieldIn(row->at(column.name)));
        if (const auto why = WhyNot(column, field)) {
            FailPlan(table.name + ": " + column.name + ' ' + *why);
        }
    }
    return fields;
}

void AppendChangedRow(std::string& text, const RowChange& change, const char* name,
                      const std::optional<StoreRow>& row) {
    if (row) {
        text += std::string(", \"") + name + "\": ";
        Exchange::AppendRow(text, *change.table, *row);
    }
}

void ReadPlan(const Json& document, RowPlan& plan) {
    plan.work = document.at("work").get<std::string>();
    for (const auto& [kind, name] : PlanSections) {
        for (const Json& change : document.at(name)) {
            const auto tableName = change.at("table").get<std::string>();
            const StoreTable* table = FindTable(tableName);
            if (table == nullptr) {
                FailPlan("there is no table '" + tableName + '\'');
            }
            plan.changes.push_back({table, RowIn(*table, change, "before"), RowIn(*table, change, "after")});
            RowChange& read = plan.changes.back();
            if (kind == ChangeKind::Rest) {
                read.after = read.before;
            }
            if (!read.before && !read.after) {
                FailPlan("a row of " + table->name + " is neither before nor after");
            }
        }
    }
    for (const Json& node : document.at("nodes")) {
        const NodePlace place{
            {node.at("config").get<std::int16_t>(), node.at("partition").get<std::int16_t>()},
            node.at("number").get<std::int16_t>()};
        plan.nodes[place] = ContentOf(node.at("content").get<std::string>());
    }
}

// The row, as far as its key, that a write with those parameters was for.
StoreRow RowOf(const StoreTable& table, ChangeKind kind, const StoreRow& parameters) {
    if (kind == ChangeKind::Addition) {
        return parameters;
    }
    StoreRow row(table.columns.size());
    const std::size_t first = kind == ChangeKind::Removal ? 0 : table.columns.size() - table.key.size();
    for (std::size_t i = 0; i < table.key.size(); ++i) {
        row[table.key[i]] = parameters.at(first + i);
    }
    return row;
}

} // namespace

RowPlan::Counts RowPlan::Count() const {
    Counts counts;
    for (const RowChange& change : changes) {
        const ChangeKind kind = ChangeKindOf(change);
        counts.removed += kind == ChangeKind::Removal ? 1 : 0;
        counts.changed += kind == ChangeKind::Change ? 1 : 0;
        counts.added += kind == ChangeKind::Addition ? 1 : 0;
    }
    return counts;
}

std::string TextOf(const RowPlan& plan) {
    std::string text = std::string("{\"format\": \"") + PlanFormat +
                       "\", \"version\": " + std::to_string(PlanVersion) + ", \"work\": ";
    AppendJsonText(text, plan.work);
    for (const auto& [kind, name] : PlanSections) {
        text += std::string(",\n\"") + name + "\": [";
        const char* between = "\n";
        for (const RowChange& change : plan.changes) {
            if (ChangeKindOf(change) != kind) {
                continue;
            }
            text += std::string(between) + R"({"table": ")" + change.table->name + '"';
            AppendChangedRow(text, change, "before", change.before);
            if (kind != ChangeKind::Rest) {
                AppendChangedRow(text, change, "after", change.after);
            }
            text += '}';
            between = ",\n";
        }
        text += ']';
    }
    text += ",\n\"nodes\": [";
    const char* between = "\n";
    for (const auto& [place, content] : plan.nodes) {
        text += between;
        text += "{\"config\": " + std::to_string(place.partition.config) +
                ", \"partition\": " + std::to_string(place.partition.number) +
                ", \"number\": " + std::to_string(place.number) + ", \"content\": ";
        AppendJsonText(text, TextOf(place, content));
        text += '}';
        between = ",\n";
    }
    text += "],\n";
    const std::string sum = SumOf(text);
    return text + std::string(SumStart) + sum + "\"}\n";
}

RowPlan PlanIn(const std::string& text) {
    RowPlan plan;
    try {
        const Json document = Json::parse(text);
        if (!document.is_object() || document.value("format", "") != PlanFormat) {
            FailPlan("it is no plan");
        }
        if (const int version = document.at("version").get<int>(); version > PlanVersion) {
            FailPlan("it is a plan of version " + std::to_string(version) + ", of a newer program");
        }
        const auto sum = text.rfind(SumStart);
        if (sum == std::string::npos || document.at("sum") != SumOf(std::string_view(text).substr(0, sum))) {
            FailPlan("it is not as it was written: its sum is another. Plan anew instead of editing it");
        }
        ReadPlan(document, plan);
    } catch (const Json::exception& error) {
        FailPlan(std::string("it is no plan that can be read: ") + error.what());
    } catch (const std::bad_optional_access&) {
        FailPlan("it is no plan that can be read: a text of bytes has other digits");
    }
    return plan;
}

std::vector<std::string> CarryOut(DataBase& dataBase, History& history, const RowPlan& plan) {
    std::vector<std::string> changed;
    std::vector<NodePlace> places;
    for (const auto& [place, content] : plan.nodes) {
        places.push_back(place);
    }
    history.Keep(places, plan.work.c_str(), [&](const NodePlace& place, const NodeContent& content) {
        if (content != plan.nodes.at(place)) {
            changed.push_back(place.Text());
        }
    });
    for (const auto& [kind, name] : PlanSections) {
        std::optional<RowWrites> writes;
        const StoreTable* table = nullptr;
        const auto send = [&, kind = kind] {
            if (writes) {
                writes->Send([&](const StoreRow& parameters) {
                    changed.push_back(table->name + ", " + KeyText(*table, RowOf(*table, kind, parameters)));
                });
            }
        };
        for (const RowChange& change : plan.changes) {
            if (!changed.empty() || ChangeKindOf(change) != kind) {
                continue;
            }
            if (change.table != table || writes->AreMany()) {
                send();
                table = change.table;
                writes.emplace(dataBase, *table);
            }
            if (!change.before) {
                writes->Insert(*change.after);
            } else if (!change.after) {
                writes->Remove(*change.before);
            } else {
                writes->Update(*change.before, *change.after);
            }
        }
        send();
    }
    return changed;
}

std::vector<std::string> Apply(DataBase& dataBase, History& history, const RowPlan& plan, Applying how) {
    history.Require();
    Transaction all(dataBase);
    auto changed = CarryOut(dataBase, history, plan);
    if (changed.empty() && how == Applying::Done) {
        all.Commit();
        dataBase.Flush();
    }
    return changed;
}

} // namespace KAL_AUTO_Node
