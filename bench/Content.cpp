#include "bench/Content.h"

#include "platform/Today.h"

namespace KAL_AUTO_Node {

namespace {

// Numbers from 1 on, as the table "Numbers".
std::string Numbers(int count) {
    return "WITH RECURSIVE Numbers (Number) AS (VALUES (1) UNION ALL SELECT Number + 1 FROM Numbers "
           "WHERE Number < " +
           std::to_string(count) + ") ";
}

class Partition {
  public:
    Partition(SQLite::Database& database, int id) : database_(database), id_(std::to_string(id)) {
        Run("INSERT INTO Node_Type_Max SELECT 1, " + id_ +
            ", ID, CASE ID WHEN 1 THEN 9 WHEN 2 THEN 999 ELSE 32767 END FROM SR_Node_Type_Names "
            "WHERE ID < 814");
    }

    void AddNodes(int count) {
        Run(Numbers(count) + "INSERT INTO Node_AUTO SELECT 1, " + id_ +
            ", 9, Number, 1, 'No', 5, 3, 2, 'MSG', 1, 'MSG', 1, 'MSG', 1, 'AUTO', 'Menu ' || Number, "
            "0, 0, 0, 814, 814, 'NONE', 0, 'NONE', 0 FROM Numbers");
        AddToRegister(9, "AUTO", "Menu ", count);
    }

    void AddMessages(int count) { AddToRegister(0, "MSG", "Message ", count); }

    void AddRows(int node, int prompts, int actions) {
        const std::string owner = std::to_string(node);
        if (prompts > 0) {
            Run(Numbers(prompts) + "INSERT INTO Detail_AUTO_Prompts SELECT 1, " + id_ +
                ", Number, 0, Number, " + owner + ", 'MSG' FROM Numbers");
        }
        Run(Numbers(actions) + "INSERT INTO Detail_AUTO_Action SELECT 1, " + id_ + ", Number, 0, Number, " +
            owner + ", Number, Number, 'MSG' FROM Numbers");
    }

  private:
    // As a save leaves it, so that one is no change to others who have loaded the node.
    void AddToRegister(int type, const std::string& name, const std::string& label, int count) {
        Run(Numbers(count) + "INSERT INTO Node_General_Pool SELECT 1, " + id_ + ", " + std::to_string(type) +
            ", Number, '" + name + "', '" + label + "' || Number, '" + Today() + "' FROM Numbers");
    }

    void Run(const std::string& sql) { database_.exec(sql); }

    SQLite::Database& database_;
    std::string id_;
};

} // namespace

void AddContent(const TestStore& store) {
    SQLite::Database database(store.File().string(), SQLite::OPEN_READWRITE, 2000);
    SQLite::Transaction all(database);
    constexpr std::array<int, 3> nodes = {10, 1000, 32767};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Place& place = SmallNodes[i].place;
        Partition partition(database, place.partition);
        partition.AddNodes(nodes[i]);
        partition.AddMessages(10);
        partition.AddRows(place.node, 5, 5);
    }
    constexpr std::array<int, 3> rows = {10, 1000, 10000};
    Partition large(database, LargeNodes.front().place.partition);
    large.AddNodes(10);
    large.AddMessages(10000);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        large.AddRows(LargeNodes[i].place.node, rows[i], rows[i]);
    }
    large.AddRows(SixtyRows.node, 30, 30);
    constexpr std::array<int, 2> references = {1000, 10000};
    for (const auto& places : {Referring, ReferringToNothing}) {
        Partition partition(database, places.front().place.partition);
        partition.AddNodes(10);
        if (places.front().place.partition == Referring.front().place.partition) {
            partition.AddMessages(10000);
        }
        for (std::size_t i = 0; i < references.size(); ++i) {
            partition.AddRows(places[i].place.node, 0, references[i]);
        }
    }
    all.commit();
}

void EmptyLog(const TestStore& store) { store.Execute("PRAGMA wal_checkpoint(TRUNCATE)"); }

} // namespace KAL_AUTO_Node
