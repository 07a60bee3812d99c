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

} // namespace

RowWrites::RowWrites(DataBase& dataBase, const StoreTable& table)
    : dataBase_(dataBase), all_(AllColumns(table)), others_(OtherColumns(table)),
      key_(table.key), insert_{InsertStatement(table), {}}, update_{UpdateStatement(table, others_), {}},
      remove_{RemoveStatement(table, others_), {}} {}

RowWrites::~RowWrites() = default;

bool RowWrites::AreMany() const { return waiting_ >= ManyWrites || bytes_ >= ManyBytes; }

void RowWrites::Insert(const StoreRow& row) { Put(Begin(insert_), row, all_); }

void RowWrites::Update(const StoreRow& before, const StoreRow& row) {
    StoreRow& parameters = Begin(update_);
    Put(parameters, row, others_);
    Put(parameters, row, key_);
    Put(parameters, before, others_);
}

void RowWrites::Remove(const StoreRow& before) {
    StoreRow& parameters = Begin(remove_);
    Put(parameters, before, key_);
    Put(parameters, before, others_);
}

StoreRow& RowWrites::Begin(Kind& kind) {
    if (!kind.statement) {
        kind.statement = dataBase_.Prepare(kind.sql);
    }
    if (waiting_ == writes_.size()) {
        writes_.emplace_back();
    }
    auto& [statement, parameters, used] = writes_[waiting_++];
    statement = kind.statement.get();
    parameters.resize(statement->ParameterCount());
    used = 0;
    return parameters;
}

void RowWrites::Put(StoreRow& parameters, const StoreRow& row, std::span<const std::size_t> columns) {
    std::size_t& used = writes_[waiting_ - 1].used;
    for (const std::size_t column : columns) {
        parameters[used++] = row[column];
        bytes_ += row[column] ? row[column]->size() : 0;
    }
}

void RowWrites::Send(const std::function<void(const StoreRow&)>& failed) {
    const std::span writes = std::span(writes_).first(waiting_);
    waiting_ = bytes_ = 0;
    std::vector<StatementRun> runs;
    runs.reserve(writes.size());
    for (const auto& [statement, parameters, used] : writes) {
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
