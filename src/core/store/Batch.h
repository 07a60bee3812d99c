#pragma once

#include "store/DataBase.h"

namespace KAL_AUTO_Node {

// Commands without result rows, run in the order in which they are added. In a file each runs when it is
// added, and those before one that fails stay done. On a server they travel together when Run is called, and
// one that fails takes the others back with it. The data base outlives it.
class Batch {
  public:
    explicit Batch(DataBase& dataBase) : dataBase_(dataBase) {}

    void Add(Command command, Parameters parameters);
    // Of each command since the latest Run, how many rows were written.
    std::vector<std::int64_t> Run();

  private:
    friend class Transaction;

    void Send(bool committing);

    DataBase& dataBase_;
    std::vector<CommandRun> waiting_;
    std::vector<std::int64_t> written_;
};

// Tells a server which queries will follow, so that all their rows come in one go. It is a hint: each query
// is made as ever, and raises its own errors. What was fetched serves until the outermost of these objects
// ends, or a command writes. The data base outlives it.
class ReadAhead {
  public:
    explicit ReadAhead(DataBase& dataBase);
    ~ReadAhead();

    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    // Whether there is a server; without one neither of the two below does anything.
    [[nodiscard]] bool Helps() const noexcept { return helps_; }

    void Add(Command command, Parameters parameters);
    void Fetch();
    // The same of prepared statements.
    void Fetch(std::span<const StatementRun> runs);

  private:
    DataBase& dataBase_;
    bool helps_;
    std::vector<CommandRun> waiting_;
};

} // namespace KAL_AUTO_Node
