#include "exchange/ExchangeImport.h"

#include "exchange/ExchangeReader.h"
#include "exchange/Statements.h"
#include "exchange/TableCursor.h"
#include "history/History.h"
#include "nodes/NodeTypes.h"
#include "platform/NumericValue.h"
#include "platform/RuntimeError.h"
#include "store/Connection.h"
#include "store/DataBase.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <map>
#include <system_error>
#include <tuple>

namespace KAL_AUTO_Node {

namespace {

// More are counted, but a person has seen enough by then.
constexpr std::size_t MostRowsTold = 100;

// In which tables an AUTO node has rows, and which columns say whose they are.
struct NodeRows {
    const char* table;
    const char* number;
    const char* type; // none where all rows are AUTO nodes'
};

constexpr std::array<NodeRows, 4> AutoNodeRows = {{{"Node_AUTO", "NodeNumber", "NodeTypeID"},
                                                   {"Detail_AUTO_Prompts", "NodeMasterID", nullptr},
                                                   {"Detail_AUTO_Action", "NodeMasterID", nullptr},
                                                   {"Node_General_Pool", "NodeNumber", "NodeTypeID"}}};
// Of them, those whose content is told as the node's.
constexpr std::size_t TablesToldAsNodes = 3;

// So many rows are added together: on a server each statement costs the way there and back.
constexpr std::size_t RowsTogether = 50;

// The statements that change one table.
class TableChanges {
  public:
    TableChanges(DataBase& dataBase, const StoreTable& table) : dataBase_(dataBase), table_(table) {
        const auto columns = AllColumns(table);
        std::ranges::set_difference(columns, Sorted(table.key), std::back_inserter(values_));
        remove_ = dataBase.Prepare("DELETE FROM " + table.name + " WHERE " + Matching(table, table.key));
        if (!values_.empty()) {
            update_ = dataBase.Prepare(UpdateStatement(table, values_));
        }
    }

    // At the latest with Finish.
    void Insert(const StoreRow& row) {
        added_.insert(added_.end(), row.begin(), row.end());
        if (added_.size() == RowsTogether * row.size()) {
            Finish();
        }
    }

    void Finish() {
        const std::size_t rows = added_.size() / table_.columns.size();
        if (rows == RowsTogether) {
            if (!insert_) {
                insert_ = dataBase_.Prepare(InsertStatement(table_, RowsTogether));
            }
            Run(*insert_, added_, rows);
        } else if (rows > 0) {
            Run(*dataBase_.Prepare(InsertStatement(table_, rows)), added_, rows);
        }
        added_.clear();
    }

    void Update(const StoreRow& row) {
        parameters_.clear();
        Append(row, values_);
        Append(row, table_.key);
        Run(*update_, parameters_);
    }

    void Remove(const StoreRow& row) {
        parameters_.clear();
        Append(row, table_.key);
        Run(*remove_, parameters_);
    }

  private:
    static std::vector<std::size_t> Sorted(std::vector<std::size_t> columns) {
        std::ranges::sort(columns);
        return columns;
    }

    void Append(const StoreRow& row, std::span<const std::size_t> columns) {
        for (const std::size_t column : columns) {
            parameters_.push_back(row[column]);
        }
    }

    void Run(Statement& statement, const StoreRow& parameters, std::size_t rows = 1) const {
        statement.Run(parameters);
        const bool written = statement.RowsWritten() == static_cast<std::int64_t>(rows);
        statement.Close();
        if (!written) {
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "A row of " + table_.name + " could not be changed");
        }
    }

    DataBase& dataBase_;
    const StoreTable& table_;
    std::vector<std::size_t> values_;   // columns that are no part of the key
    StoreRow added_;                    // rows that are not inserted yet, one behind another
    std::unique_ptr<Statement> insert_; // of RowsTogether
    std::unique_ptr<Statement> update_;
    std::unique_ptr<Statement> remove_;
    StoreRow parameters_;
};

// Goes over a table of the store and over its rows in the text side by side, both in the order of their keys.
class ExchangeImport : public ExchangeSink {
  public:
    ExchangeImport(DataBase& dataBase, bool keepsHistory, const ExchangeNode& tell)
        : dataBase_(dataBase), history_(dataBase), keepsHistory_(keepsHistory), tell_(tell) {}

    void TakeScope(std::optional<Partition> scope) override { report_.scope = scope; }

    void TakeTable(const StoreTable& table) override {
        table_ = &table;
        cursor_.emplace(dataBase_, table, report_.scope);
        changes_.emplace(dataBase_, table);
        counts_ = {table.name, 0, 0, 0, {}, 0};
        nodeRows_ = std::ranges::find(AutoNodeRows, table.name, &NodeRows::table);
        isToldAsNodes_ = nodeRows_ - AutoNodeRows.begin() < std::ptrdiff_t{TablesToldAsNodes};
        if (nodeRows_ != AutoNodeRows.end()) {
            number_ = FindColumn(table, nodeRows_->number).value();
            type_ = nodeRows_->type != nullptr ? FindColumn(table, nodeRows_->type) : std::nullopt;
        }
    }

    void TakeRow(const StoreRow& row) override {
        const StoreRow* stored = cursor_->Row();
        if (stored != nullptr && *stored == row) {
            cursor_->Next();
            return;
        }
        const StoreKey key = KeyOf(*table_, row);
        stored = RemoveUpTo(&key);
        if (stored == nullptr || cursor_->Key() != key) {
            const bool isNode = Touch(row);
            changes_->Insert(row);
            Count(counts_.added, "added", row, isNode);
            return;
        }
        if (*stored != row) {
            const bool isNode = Touch(row);
            const std::string columns = Differing(*stored, row);
            changes_->Update(row);
            Count(counts_.changed, "changed", row, isNode, columns);
        }
        cursor_->Next();
    }

    void TakeEndOfTable() override {
        RemoveUpTo(nullptr);
        changes_->Finish();
        if (counts_.added + counts_.changed + counts_.removed > 0) {
            report_.tables.push_back(std::move(counts_));
        }
        changes_.reset();
        cursor_.reset();
    }

    ExchangeReport Finish() {
        for (const auto& [at, before] : touched_) {
            const auto& [config, partition, number] = at;
            const NodePlace place{{config, partition}, number};
            tell_(place, before, ReadContent(dataBase_, place.partition, place.number).node);
        }
        return std::move(report_);
    }

  private:
    using Place = std::tuple<std::int16_t, std::int16_t, std::int16_t>;

    // Removes what the store has before that key, or all the rest; returns the row reached.
    const StoreRow* RemoveUpTo(const StoreKey* key) {
        const StoreRow* stored = cursor_->Row();
        for (; stored != nullptr && (key == nullptr || cursor_->Key() < *key); stored = cursor_->Row()) {
            const bool isNode = Touch(*stored);
            Count(counts_.removed, "removed", *stored, isNode);
            changes_->Remove(*stored);
            cursor_->Next();
        }
        return stored;
    }

    // Before the first row of an AUTO node changes, keeps the node as it is. False for another row.
    bool Touch(const StoreRow& row) {
        if (nodeRows_ == AutoNodeRows.end()) {
            return false;
        }
        const auto number = [&](std::size_t column) { return NumericValue(row[column].value_or("")); };
        const std::array<std::int64_t, 3> numbers = {number(table_->key[0]), number(table_->key[1]),
                                                     number(number_)};
        // A number that no AUTO node can have is another program's.
        if ((type_ && number(*type_) != AutoType) ||
            !std::ranges::all_of(numbers, [](std::int64_t n) { return std::in_range<std::int16_t>(n); })) {
            return false;
        }
        const auto small = [&](std::size_t i) { return static_cast<std::int16_t>(numbers[i]); };
        const Place at{small(0), small(1), small(2)};
        const auto found = touched_.lower_bound(at);
        if (found == touched_.end() || found->first != at) {
            const NodePlace place{{small(0), small(1)}, small(2)};
            NodeContent before = keepsHistory_ ? history_.Keep(place, "import")
                                               : ReadContent(dataBase_, place.partition, place.number);
            touched_.emplace_hint(found, at, std::move(before.node));
        }
        return true;
    }

    void Count(std::uint64_t& count, const char* what, const StoreRow& row, bool isNode,
               const std::string& columns = "") {
        ++count;
        if (isNode && isToldAsNodes_) {
            return;
        }
        if (counts_.rows.size() == MostRowsTold) {
            ++counts_.untold;
            return;
        }
        counts_.rows.push_back(std::string(what) + ' ' + KeyText(*table_, row) + columns);
    }

    [[nodiscard]] std::string Differing(const StoreRow& before, const StoreRow& after) const {
        std::string names;
        for (std::size_t column = 0; column < before.size(); ++column) {
            if (before[column] != after[column]) {
                names += names.empty() ? ": " : ", ";
                names += table_->columns[column].name;
            }
        }
        return names;
    }

    DataBase& dataBase_;
    History history_;
    bool keepsHistory_;
    const ExchangeNode& tell_;
    ExchangeReport report_;
    // Of the table that is being gone over.
    const StoreTable* table_ = nullptr;
    std::optional<TableCursor> cursor_;
    std::optional<TableChanges> changes_;
    ExchangeReport::Table counts_;
    const NodeRows* nodeRows_ = AutoNodeRows.end(); // the end where no row of the table is an AUTO node's
    bool isToldAsNodes_ = false;
    std::size_t number_ = 0;
    std::optional<std::size_t> type_;
    std::map<Place, std::optional<AutoNode>> touched_; // as they were
};

} // namespace

ExchangeReport ImportExchange(DataBase& dataBase, const std::filesystem::path& file, Import how,
                              const ExchangeNode& tell) {
    std::ifstream text(file, std::ios::binary);
    if (!text) {
        throw RuntimeError(ErrorNumber::StoreNotFound,
                           "Cannot read '" + file.string() + "': " + std::generic_category().message(errno));
    }
    // What is only told leaves nothing behind, not even the tables that a history needs.
    const bool keepsHistory = how == Import::Carry && History(dataBase).Prepare();
    if (how == Import::Carry && !keepsHistory) {
        throw RuntimeError(ErrorNumber::PermissionDenied,
                           "The store may not keep the nodes as they were, so that nothing is imported");
    }
    Transaction all(dataBase);
    ExchangeImport import(dataBase, keepsHistory, tell);
    try {
        ReadExchange(text, import);
    } catch (const RuntimeError& error) {
        throw RuntimeError(error.Number(), "Cannot import '" + file.string() + "': " + error.what(),
                           error.Source());
    }
    ExchangeReport report = import.Finish();
    if (how == Import::Carry) {
        all.Commit();
        dataBase.Flush();
    }
    return report;
}

} // namespace KAL_AUTO_Node
