#include "exchange/TableCursor.h"

#include "exchange/Statements.h"
#include "platform/RuntimeError.h"
#include "store/Connection.h"
#include "store/DataBase.h"

namespace KAL_AUTO_Node {

namespace {

constexpr std::size_t RowsAtOnce = 1000;

} // namespace

TableCursor::TableCursor(DataBase& dataBase, const StoreTable& table, std::optional<Partition> scope)
    : table_(table), position_(table.key) {
    std::string where;
    if (scope) {
        scope_ = {std::to_string(scope->config), std::to_string(scope->number)};
        where = Matching(table, std::span(table.key).first(scope_.size()));
        position_.erase(position_.begin(), position_.begin() + static_cast<std::ptrdiff_t>(scope_.size()));
    }
    const std::string select = "SELECT " + Listed(table, AllColumns(table)) + " FROM " + table.name;
    const std::string order =
        " ORDER BY " + Listed(table, table.key) + " LIMIT " + std::to_string(RowsAtOnce);
    const std::string from = '(' + Listed(table, position_) + ") >= (" + Listed(table, position_, ":") + ')';
    first_ = dataBase.Prepare(select + (where.empty() ? "" : " WHERE " + where) + order);
    further_ = dataBase.Prepare(select + " WHERE " + (where.empty() ? "" : where + " AND ") + from + order);
}

TableCursor::~TableCursor() = default;

const StoreRow* TableCursor::Row() {
    if (!begun_) {
        begun_ = true;
        Load(*first_, scope_);
        if (count_ > 0) {
            key_ = RowKeyOf(table_, rows_.front());
        }
    }
    return at_ < count_ ? &rows_[at_] : nullptr;
}

void TableCursor::Next() {
    ++at_;
    if (at_ == count_ && count_ == RowsAtOnce) {
        // From the last row on, which may be gone by now: another one of its key would be missed otherwise.
        StoreRow parameters = scope_;
        for (const std::size_t column : position_) {
            parameters.push_back(rows_.back()[column]);
        }
        Load(*further_, parameters);
        at_ = count_ > 0 && RowKeyOf(table_, rows_.front()) == key_ ? 1 : 0;
    }
    if (at_ < count_) {
        const StoreKey key = RowKeyOf(table_, rows_[at_]);
        if (key <= key_) {
            FailOrder(rows_[at_]);
        }
        key_ = key;
    }
}

void TableCursor::Load(Statement& select, const StoreRow& parameters) {
    at_ = count_ = 0;
    rows_.resize(RowsAtOnce);
    for (select.Run(parameters); !select.AtEnd(); select.MoveNext()) {
        StoreRow& row = rows_[count_++];
        row.resize(table_.columns.size());
        for (std::size_t column = 0; column < row.size(); ++column) {
            if (const auto field = select.Field(column)) {
                row[column] = *field;
            } else {
                row[column].reset();
            }
        }
    }
    select.Close();
}

void TableCursor::FailOrder(const StoreRow& row) const {
    throw RuntimeError(ErrorNumber::DuplicateKey,
                       "Two rows of " + table_.name + " have the key " + KeyText(table_, row));
}

} // namespace KAL_AUTO_Node
