#include "exchange/StoreOfText.h"

#include "exchange/RowParts.h"
#include "exchange/RowWrites.h"
#include "exchange/TableCursor.h"
#include "store/Connection.h"
#include "store/Scripts.h"

namespace KAL_AUTO_Node {

StoreOfText::StoreOfText(const std::filesystem::path& file, DataBase* reference)
    : store_(OpenScratchStore()) {
    ReadExchangeFile(file, "Cannot check", *this);
    if (!scope_) {
        return;
    }
    if (reference != nullptr) {
        TakeReferenceData(*reference);
    } else {
        DataBase demo(OpenScratchStore());
        demo.MakeTables(DemoScript);
        TakeReferenceData(demo);
    }
}

StoreOfText::~StoreOfText() = default;

void StoreOfText::TakeTable(const StoreTable& table) {
    table_ = &table;
    writes_ = std::make_unique<RowWrites>(store_, table);
}

void StoreOfText::TakeRow(const StoreRow& row, std::uint64_t line) {
    if (HoldsNodes(*table_)) {
        const StoreKey key = RowKeyOf(*table_, row);
        lines_.emplace(Place{table_, NodeKeyOf(*table_, key), HoldsLists(*table_) ? key.back() : 0}, line);
    }
    writes_->Insert(row);
    if (writes_->AreMany()) {
        TakeEndOfTable();
    }
}

void StoreOfText::TakeEndOfTable() {
    writes_->Send([](const StoreRow&) {});
}

void StoreOfText::TakeReferenceData(DataBase& from) {
    for (const StoreTable& table : StoreTables()) {
        if (table.partitioned || !from.HasTable(table.name)) {
            continue;
        }
        RowWrites writes(store_, table);
        for (TableCursor rows(from, table, {}); const StoreRow* row = rows.Row(); rows.Next()) {
            writes.Insert(*row);
        }
        writes.Send([](const StoreRow&) {});
    }
}

std::optional<std::uint64_t> StoreOfText::LineOf(Partition partition, int typeID, int number,
                                                 std::string_view table, int row) const {
    const StoreKey node{partition.config, partition.number, typeID, number};
    const StoreTable* named = table.empty() ? nullptr : FindTable(table);
    if (const auto found = lines_.lower_bound({named, node, row});
        named != nullptr && found != lines_.end()) {
        const auto& [foundTable, foundNode, foundRow] = found->first;
        // Of a list without such a row, the first one.
        if (foundTable == named && foundNode == node && (foundRow == row || row == 0)) {
            return found->second;
        }
    }
    // The register, which has a row of every node, comes before the records.
    std::optional<std::uint64_t> line;
    for (const StoreTable& record : StoreTables()) {
        const auto found = lines_.find({&record, node, 0});
        line = found == lines_.end() || HoldsLists(record) ? line : found->second;
    }
    return line;
}

} // namespace KAL_AUTO_Node
