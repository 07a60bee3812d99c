#include "exchange/RowWrites.h"

#include "exchange/Statements.h"
#include "store/Connection.h"
#include "store/DataBase.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

// Enough that the way to a server counts for little, and little enough to be held in memory.
constexpr std::size_t ManyWrites = 500;
constexpr std::size_t ManyBytes = 1U << 20U;

std::vector<std::size_t> OtherColumns(const StoreTable& table) {
    auto columns = AllColumns(table);
    std::erase_if(
        columns, [&](std::size_t column) { return std::ranges::find(table.key, column) != table.key.end(); });
    return columns;
}

std::vector<std::size_t> Joined(std::vector<std::size_t> columns, const std::vector<std::size_t>& more) {
    columns.insert(columns.end(), more.begin(), more.end());
    return columns;
}

} // namespace

RowWrites::RowWrites(DataBase& dataBase, const StoreTable& table)
    : dataBase_(dataBase), insert_{InsertStatement(table), AllColumns(table), {}},
      update_{UpdateStatement(table, OtherColumns(table)), Joined(OtherColumns(table), table.key), {}},
      remove_{DeleteStatement(table, table.key), table.key, {}} {}

RowWrites::~RowWrites() = default;

bool RowWrites::AreMany() const { return waiting_ >= ManyWrites || bytes_ >= ManyBytes; }

void RowWrites::Add(Kind& kind, const StoreRow& row) {
    if (!kind.statement) {
        kind.statement = dataBase_.Prepare(kind.sql);
    }
    if (waiting_ == writes_.size()) {
        writes_.emplace_back();
    }
    auto& [statement, parameters] = writes_[waiting_++];
    statement = kind.statement.get();
    parameters.resize(kind.columns.size());
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const auto& field = row[kind.columns[i]];
        parameters[i] = field;
        bytes_ += field ? field->size() : 0;
    }
}

void RowWrites::Send(const std::function<void(const StoreRow&)>& failed) {
    const std::span writes = std::span(writes_).first(waiting_);
    waiting_ = bytes_ = 0;
    std::vector<StatementRun> runs;
    runs.reserve(writes.size());
    for (const auto& [statement, parameters] : writes) {
        runs.push_back({statement, parameters});
    }
    const auto written = dataBase_.RunTogether(runs);
    for (std::size_t i = 0; i < written.size(); ++i) {
        if (written[i] != 1) {
            failed(writes[i].parameters);
        }
    }
}

} // namespace KAL_AUTO_Node
