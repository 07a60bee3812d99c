#pragma once

#include "store/DataBase.h"

#include <functional>

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

// Lets what reading code asks a server travel together. What was fetched serves until the outermost of these
// objects ends, or a command writes. The data base outlives it.
class ReadAhead {
  public:
    explicit ReadAhead(DataBase& dataBase);
    ~ReadAhead();

    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    // Runs the procedure, which reads and changes nothing in the store. From a server it is run once more for
    // each round of queries: what it has not asked before has no rows yet, and is fetched at its end, all at
    // once. So what it finds is what its last run finds, and so is what it raises.
    void Read(const std::function<void()>& read);
    // The same of what will be read later, one by one; raises only what ends a transaction.
    void Fetch(const std::function<void()>& read);
    // The same of prepared statements.
    void Fetch(std::span<const StatementRun> runs);

  private:
    DataBase& dataBase_;
    bool helps_;
};

} // namespace KAL_AUTO_Node
