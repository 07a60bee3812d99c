#pragma once

#include "exchange/Tables.h"
#include "nodes/Identity.h"
#include "store/Connection.h"

#include <memory>
#include <optional>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;

// The rows of a table, or of its part in one partition, in the order of their keys. Some at a time are held
// in memory, so that the table may be changed meanwhile up to the row reached.
class TableCursor {
  public:
    // The data base and the table outlive the cursor.
    TableCursor(DataBase& dataBase, const StoreTable& table, std::optional<Partition> scope);
    ~TableCursor();

    [[nodiscard]] const StoreTable& Table() const { return table_; }

    // What it begins with, to be fetched ahead together with other cursors'.
    [[nodiscard]] StatementRun First() const { return {first_.get(), scope_}; }

    // The row reached, or nothing at the end; valid until the next move. Raises DuplicateKey where the store
    // has two rows of one key, which only another program's can.
    [[nodiscard]] const StoreRow* Row();

    // Of the row reached.
    [[nodiscard]] const StoreKey& Key() const { return key_; }

    void Next();

  private:
    void Load(Statement& select, const StoreRow& parameters);
    [[noreturn]] void FailOrder(const StoreRow& row) const;

    const StoreTable& table_;
    StoreRow scope_;                    // configuration and partition, where it is one partition
    std::vector<std::size_t> position_; // columns of the key that tell rows of the scope apart
    std::unique_ptr<Statement> first_;
    std::unique_ptr<Statement> further_; // from a row on
    std::vector<StoreRow> rows_;
    std::size_t count_ = 0; // of them
    std::size_t at_ = 0;
    StoreKey key_{}; // of the row reached, or of the last one at the end
    bool begun_ = false;
};

} // namespace KAL_AUTO_Node
