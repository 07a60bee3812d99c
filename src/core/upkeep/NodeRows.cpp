#include "upkeep/NodeRows.h"

#include "exchange/Statements.h"
#include "nodes/Templates.h"
#include "store/Connection.h"
#include "store/DataBase.h"

#include <memory>
#include <span>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* Register = "Node_General_Pool";

// "ConfigID = :Config AND ...", of the rows of the node. The parameters are those of OfNode.
std::string Where(const NodeTable& table) {
    std::string text = " WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND " +
                       table.table->columns[table.number].name + " = :Given_Number";
    return table.IsRecord() ? text + " AND NodeTypeID = :Given_TypeID" : text;
}

NodeTable RegisterTable() {
    const StoreTable& table = *FindTable(Register);
    return {&table, FindColumn(table, "NodeNumber").value()};
}

using Values = std::vector<std::optional<std::string>>;

Values OfNode(const NodeTable& table, Partition partition, const NodeKey& node) {
    Values values;
    for (const int number : {int{partition.config}, int{partition.number}, node.number}) {
        values.emplace_back(std::to_string(number));
    }
    if (table.IsRecord()) {
        values.emplace_back(std::to_string(node.typeID));
    }
    return values;
}

// Runs a statement on each table of the node, with those parameters before what tells its rows.
template <class Write>
void OnTables(DataBase& dataBase, Partition partition, const NodeKey& node,
              const std::vector<NodeTable>& tables, const Write& write) {
    std::vector<std::unique_ptr<Statement>> statements;
    std::vector<Values> parameters;
    for (const NodeTable& table : tables) {
        auto [sql, values] = write(table);
        statements.push_back(dataBase.Prepare(sql + Where(table)));
        for (auto& value : OfNode(table, partition, node)) {
            values.push_back(std::move(value));
        }
        parameters.push_back(std::move(values));
    }
    std::vector<StatementRun> runs;
    for (std::size_t i = 0; i < statements.size(); ++i) {
        runs.push_back({statements[i].get(), parameters[i]});
    }
    static_cast<void>(dataBase.RunTogether(runs));
}

std::vector<NodeTable> WithRegister(int typeID) {
    auto tables = TablesOf(typeID);
    tables.push_back(RegisterTable());
    return tables;
}

} // namespace

std::vector<NodeTable> TablesOf(int typeID) {
    std::vector<NodeTable> tables;
    const std::string word(TableWord(typeID));
    if (word.empty()) {
        return tables;
    }
    const std::string record = "Node_" + word;
    const std::string details = "Detail_" + word;
    for (const StoreTable& table : StoreTables()) {
        if (table.name == record) {
            tables.insert(tables.begin(), {&table, FindColumn(table, "NodeNumber").value()});
        } else if (table.name == details || table.name.starts_with(details + '_')) {
            tables.push_back({&table, FindColumn(table, "NodeMasterID").value()});
        }
    }
    return tables;
}

NodeTraces ReadTraces(DataBase& dataBase, Partition partition, const NodeKey& node) {
    std::string sql;
    const auto tables = WithRegister(node.typeID);
    for (std::size_t i = 0; i < tables.size(); ++i) {
        sql += i == 0 ? "" : " UNION ALL ";
        sql += "SELECT " + std::to_string(i) + " AS Place, COUNT(*) AS Found FROM " + tables[i].table->name +
               Where(tables[i]);
    }
    const auto statement = dataBase.Prepare(sql);
    NodeTraces traces;
    // The type is a parameter of its own, since the first table has a column for it.
    const Values values = OfNode(tables.front(), partition, node);
    for (statement->Run(values); !statement->AtEnd(); statement->MoveNext()) {
        if (statement->Field(1) == "0") {
            continue;
        }
        const auto place = static_cast<std::size_t>(std::stoul(std::string(statement->Field(0).value())));
        (place == 0                   ? traces.recorded
         : place + 1 == tables.size() ? traces.registered
                                      : traces.detailed) = true;
    }
    return traces;
}

std::vector<StoreRow> ReadRows(DataBase& dataBase, const NodeTable& table, Partition partition,
                               const NodeKey& node) {
    const auto columns = AllColumns(*table.table);
    const auto statement = dataBase.Prepare("SELECT " + Listed(*table.table, columns) + " FROM " +
                                            table.table->name + Where(table));
    std::vector<StoreRow> rows;
    const Values values = OfNode(table, partition, node);
    for (statement->Run(values); !statement->AtEnd(); statement->MoveNext()) {
        StoreRow& row = rows.emplace_back();
        for (const std::size_t column : columns) {
            const auto field = statement->Field(column);
            row.push_back(field ? std::optional<std::string>(*field) : std::nullopt);
        }
    }
    return rows;
}

void DeleteRows(DataBase& dataBase, Partition partition, const NodeKey& node) {
    OnTables(dataBase, partition, node, WithRegister(node.typeID),
             [](const NodeTable& table) { return std::pair("DELETE FROM " + table.table->name, Values()); });
}

void RenumberRows(DataBase& dataBase, Partition partition, const NodeKey& node, int number,
                  const std::string& date) {
    OnTables(dataBase, partition, node, WithRegister(node.typeID), [&](const NodeTable& table) {
        std::string sql = "UPDATE " + table.table->name + " SET " + table.table->columns[table.number].name +
                          " = :New_Number";
        Values values = {std::to_string(number)};
        if (table.table->name == Register) {
            sql += ", DateModified = :New_Date";
            values.emplace_back(date);
        }
        return std::pair(sql, values);
    });
}

void LabelRows(DataBase& dataBase, Partition partition, const NodeKey& node, const std::string& label,
               const std::string& date) {
    const std::vector<NodeTable> tables = {TablesOf(node.typeID).front(), RegisterTable()};
    OnTables(dataBase, partition, node, tables, [&](const NodeTable& table) {
        std::string sql = "UPDATE " + table.table->name + " SET NodeDescription = :New_Label";
        Values values = {label};
        if (table.table->name == Register) {
            sql += ", DateModified = :New_Date";
            values.emplace_back(date);
        }
        return std::pair(sql, values);
    });
}

} // namespace KAL_AUTO_Node
