#include "upkeep/CopyNode.h"

#include "audit/FixMissing.h"
#include "audit/Repoint.h"
#include "exchange/RowWrites.h"
#include "history/History.h"
#include "nodes/NodeTypes.h"
#include "nodes/TypeCatalogue.h"
#include "platform/RuntimeError.h"
#include "platform/WholeNumber.h"
#include "store/Batch.h"
#include "upkeep/NodeRows.h"

#include <algorithm>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* Work = "copy";

// The rows of a node as those of a copy in another partition; and what they refer to.
class Rows {
  public:
    Rows(DataBase& dataBase, const TypeNames& names, const CopyOrder& order, const std::string& date)
        : dataBase_(dataBase), names_(names), order_(order) {
        for (const NodeTable& table : TablesOf(order.node.typeID)) {
            Take(table);
        }
        const StoreTable& entries = *FindTable("Node_General_Pool");
        const NodeTable table{&entries, FindColumn(entries, "NodeNumber").value()};
        Take(table);
        for (StoreRow& row : tables_.back().second) {
            row[FindColumn(entries, "DateModified").value()] = date;
        }
    }

    [[nodiscard]] const std::set<NodeKey>& References() const { return references_; }

    void Insert(const std::string& recording) {
        for (auto& [table, rows] : tables_) {
            RowWrites writes(dataBase_, *table.table);
            const auto send = [&, &table = table] {
                writes.Send([&](const StoreRow& row) {
                    throw RuntimeError(ErrorNumber::DuplicateKey,
                                       "A row of " + table.table->name +
                                           " is there already: " + KeyText(*table.table, row));
                });
            };
            for (StoreRow& row : rows) {
                if (const auto file = FindColumn(*table.table, "VexoFilename"); file && !recording.empty()) {
                    row[*file] = recording;
                }
                writes.Insert(row);
                if (writes.AreMany()) {
                    send();
                }
            }
            send();
        }
    }

  private:
    void Take(const NodeTable& table) {
        auto rows = ReadRows(dataBase_, table, order_.from, order_.node);
        for (StoreRow& row : rows) {
            for (const ReferenceColumn& column : AllReferenceColumns()) {
                if (column.table == table.table->name) {
                    TakeReference(*table.table, row, column);
                }
            }
            row[FindColumn(*table.table, "ConfigID").value()] = std::to_string(order_.to.config);
            row[FindColumn(*table.table, "PartID").value()] = std::to_string(order_.to.number);
            row[table.number] = std::to_string(order_.number);
        }
        tables_.emplace_back(table, std::move(rows));
    }

    void TakeReference(const StoreTable& table, const StoreRow& row, const ReferenceColumn& column) {
        const auto field = [&](const char* end) -> const std::optional<std::string>& {
            return row[FindColumn(table, std::string(column.word) + end).value()];
        };
        const auto number = WholeNumber<int>(field("NodeNumber").value_or(""));
        const auto typeID = column.hasTypeID ? WholeNumber<int>(field("NodeTypeID").value_or(""))
                                             : names_.ID(field("NodeType").value_or(""));
        if (typeID && number && RefersToNode(*typeID)) {
            references_.insert(NodeKey{*typeID, *number}.Itself());
        }
    }

    DataBase& dataBase_;
    const TypeNames& names_;
    const CopyOrder& order_;
    std::vector<std::pair<NodeTable, std::vector<StoreRow>>> tables_;
    std::set<NodeKey> references_;
};

std::set<NodeKey> MissingIn(DataBase& dataBase, Partition partition, const std::set<NodeKey>& nodes) {
    ReadAhead ahead(dataBase);
    std::set<NodeKey> missing;
    ahead.Fetch([&] {
        for (const NodeKey& node : nodes) {
            static_cast<void>(IsNodeExisted(dataBase, partition, node));
        }
    });
    std::ranges::copy_if(nodes, std::inserter(missing, missing.end()),
                         [&](const NodeKey& node) { return !IsNodeExisted(dataBase, partition, node); });
    return missing;
}

// Reads, and gathers what stands in the way.
CopyReport Plan(DataBase& dataBase, History& history, const TypeNames& names, const CopyOrder& order,
                std::optional<Rows>& rows, const std::string& date) {
    CopyReport report;
    const NodeKey copy{order.node.typeID, order.number};
    const auto add = [&](std::optional<std::string> obstacle) {
        if (obstacle) {
            report.obstacles.push_back(std::move(*obstacle));
        }
    };
    add(WhyNotTouched(dataBase, history, names, order.from, order.node));
    if (!HasCopyRule(copy.typeID)) {
        return report;
    }
    if (report.obstacles.empty() && !ReadTraces(dataBase, order.from, order.node).IsWhole()) {
        add(names.Text(order.node) + " is not whole; check tells what it lacks");
    }
    add(WhyNotNew(dataBase, names, order.to, copy));
    if (order.node.typeID == MessageType) {
        report.recording = MessageFileName(order.to.number, order.number);
    }
    if (order.from == order.to || !report.obstacles.empty()) {
        return report;
    }
    auto references = rows.emplace(dataBase, names, order, date).References();
    references.erase(copy);
    report.missing = MissingIn(dataBase, order.to, references);
    if (order.missing == Missing::Refuse) {
        for (const NodeKey& node : report.missing) {
            add(names.Text(node) + " does not exist in " + order.to.Text());
        }
    }
    return report;
}

// Makes those from their templates.
void Create(DataBase& dataBase, History& history, const TypeNames& names, Partition partition,
            const std::string& date, CopyReport& report) {
    for (const NodeKey& node : report.missing) {
        const Creation outcome = MakeOfTemplate(dataBase, history, partition, node, date);
        if (outcome != Creation::Created) {
            report.obstacles.push_back(names.Text(node) +
                                       " does not exist there, nor a whole template to make it of");
        }
    }
}

} // namespace

std::optional<std::string> WhyNotNew(DataBase& dataBase, const TypeNames& names, Partition partition,
                                     const NodeKey& node) {
    const std::string name = names.Text(node);
    if (node.number == TemplateNumber) {
        return name + " is the partition's template";
    }
    const int highest = ReadMaxNodeNumber(dataBase, partition, node.typeID).value_or(HighestNodeNumber);
    if (node.number < 0 || node.number > highest) {
        return AboveHighest(name, highest);
    }
    const NodeTraces traces = ReadTraces(dataBase, partition, node);
    if (!traces.Any()) {
        return std::nullopt;
    }
    return name + (traces.IsWhole()    ? " exists already"
                   : traces.registered ? " is in the register already, though there is no record of it"
                   : traces.recorded   ? " has a record already, though it is not in the register"
                                       : " has detail rows already, though there is no such node");
}

std::optional<std::string> WhyNotTouched(DataBase& dataBase, History& history, const TypeNames& names,
                                         Partition partition, const NodeKey& node) {
    const std::string name = names.Text(node);
    if (!HasCopyRule(node.typeID)) {
        return name + " is of a type whose nodes this program cannot copy, move or remove";
    }
    if (!ReadTraces(dataBase, partition, node).Any()) {
        return name + " does not exist";
    }
    const auto saves = node.typeID == AutoType
                           ? UnfinishedSaves(dataBase, history, names, partition, {node.number})
                           : std::vector<std::string>();
    return saves.empty() ? std::nullopt : std::optional(saves.front());
}

CopyReport CopyNode(DataBase& dataBase, History& history, const TypeNames& names, const CopyOrder& order,
                    const std::string& date, Carry carry) {
    std::optional<Rows> rows;
    if (carry == Carry::OnlyTell) {
        return Plan(dataBase, history, names, order, rows, date);
    }
    history.Require();
    const auto& [typeID, number] = order.node;
    Transaction all(dataBase);
    CopyReport report = Plan(dataBase, history, names, order, rows, date);
    if (report.obstacles.empty() && order.missing == Missing::Create) {
        Create(dataBase, history, names, order.to, date, report);
    }
    if (!report.obstacles.empty()) {
        return report;
    }
    if (typeID == AutoType) {
        history.Keep(std::array{PlaceOf(order.to, order.number)}, Work);
    }
    if (rows) {
        rows->Insert(report.recording);
    } else if (const Creation outcome =
                   CreateNodeFromTemplate(dataBase, order.from, number, {typeID, order.number}, date);
               outcome != Creation::Created) {
        throw RuntimeError(ErrorNumber::StoreFailure, "Not all rows of the copy were written");
    }
    if (order.label) {
        LabelRows(dataBase, order.to, {typeID, order.number}, *order.label, date);
    }
    all.Commit();
    dataBase.Flush();
    return report;
}

} // namespace KAL_AUTO_Node
