#pragma once

#include "exchange/Tables.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class DataBase;
class Statement;

// Writes to the rows of a table, which wait until they are sent: to a server many go together.
class RowWrites {
  public:
    // The data base outlives it.
    RowWrites(DataBase& dataBase, const StoreTable& table);
    ~RowWrites();

    void Insert(const StoreRow& row);
    // All other columns of the row of that key, and the row: not where it is another than before by then.
    void Update(const StoreRow& before, const StoreRow& row);
    void Remove(const StoreRow& before);

    // Whether so many wait, or so much, that they should be sent.
    [[nodiscard]] bool AreMany() const;

    // Runs them in their order. Each that has not written its one row is then told by its parameters; those
    // of an insert are the row, whose key is there already.
    void Send(const std::function<void(const StoreRow& parameters)>& failed);

  private:
    struct Kind {
        std::string sql;
        std::unique_ptr<Statement> statement; // once it is needed
    };

    struct Write {
        Statement* statement = nullptr;
        StoreRow parameters;
        std::size_t used = 0; // of them, while they are put there
    };

    StoreRow& Begin(Kind& kind);
    void Put(StoreRow& parameters, const StoreRow& row, std::span<const std::size_t> columns);

    DataBase& dataBase_;
    std::vector<std::size_t> all_; // positions of columns
    std::vector<std::size_t> others_;
    std::vector<std::size_t> key_;
    Kind insert_;
    Kind update_;
    Kind remove_;
    std::vector<Write> writes_; // as many as have ever waited, for their memory
    std::size_t waiting_ = 0;   // of them
    std::size_t bytes_ = 0;     // in what waits
};

} // namespace KAL_AUTO_Node
