#include "exchange/ExchangeImport.h"

#include "exchange/ExchangeReader.h"
#include "exchange/Plan.h"
#include "exchange/RowOwners.h"
#include "exchange/RowWrites.h"
#include "exchange/TableCursor.h"
#include "history/History.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"
#include "store/Connection.h"
#include "store/DataBase.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

namespace KAL_AUTO_Node {

namespace {

// More are counted, but a person has seen enough by then.
constexpr std::size_t MostRowsTold = 100;

// Of what is planned before the right to write is taken. An import that changes more holds that right while
// it compares, too.
constexpr std::size_t MostPlannedBytes = 64U << 20U;

// How often others may change what was planned on before the import keeps them from it.
constexpr int MostPlans = 3;

constexpr std::uint64_t RowsBetweenProgress = 1000;

constexpr const char* Work = "import";

void Put(RowWrites& writes, const StoreRow* before, const StoreRow* after) {
    if (before == nullptr) {
        writes.Insert(*after);
    } else if (after == nullptr) {
        writes.Remove(*before);
    } else {
        writes.Update(*before, *after);
    }
}

enum class Mode { Tell, Plan, Write };

// Goes over a table of the store and over its rows in the text side by side, both in the order of their keys.
class Comparison : public ExchangeSink {
  public:
    Comparison(DataBase& dataBase, Mode mode, const ImportProgress& progress, const std::string& note)
        : dataBase_(dataBase), history_(dataBase, note), mode_(mode), progress_(progress) {}

    void TakeScope(std::optional<Partition> scope) override { report_.scope = scope; }

    void TakeTable(const StoreTable& table) override {
        table_ = &table;
        owners_.emplace(table);
        cursor_.emplace(dataBase_, table, report_.scope);
        writes_.emplace(dataBase_, table);
        counts_ = {table.name, 0, 0, 0, {}, 0};
    }

    void TakeRow(const StoreRow& row, std::uint64_t /*line*/) override {
        if (++rows_ % RowsBetweenProgress == 0) {
            progress_(rows_);
        }
        const StoreRow* stored = cursor_->Row();
        if (stored != nullptr && *stored == row) {
            cursor_->Next();
            return;
        }
        const StoreKey key = RowKeyOf(*table_, row);
        stored = RemoveUpTo(&key);
        if (stored == nullptr || cursor_->Key() != key) {
            Change(nullptr, &row, key);
            return;
        }
        if (*stored != row) {
            Change(stored, &row, key);
        }
        cursor_->Next();
    }

    void TakeEndOfTable() override {
        RemoveUpTo(nullptr);
        Settle();
        if (counts_.added + counts_.changed + counts_.removed > 0) {
            report_.tables.push_back(std::move(counts_));
        }
        writes_.reset();
        cursor_.reset();
    }

    // Once the text is read to its end.
    [[nodiscard]] ExchangeReport& Report() { return report_; }

    [[nodiscard]] bool IsTooLarge() const { return plannedBytes_ > MostPlannedBytes; }

    [[nodiscard]] std::vector<NodePlace> Places() const {
        std::vector<NodePlace> places;
        for (const auto& [place, before] : plan_.nodes) {
            places.push_back(place);
        }
        return places;
    }

    // Part of a transaction. Whether all was as it was when it was planned; otherwise the transaction must
    // not be committed.
    [[nodiscard]] bool CarryOut() { return KAL_AUTO_Node::CarryOut(dataBase_, history_, plan_).empty(); }

    [[nodiscard]] RowPlan& Planned() { return plan_; }

    // Tells the nodes that changed as a store has them now.
    void TellNodes(DataBase& after, const ExchangeNode& tell) const {
        ReadContents(after, Places(), [&](const NodePlace& place, const NodeContent& content) {
            tell(place, plan_.nodes.at(place).node, content.node);
        });
    }

  private:
    // Removes what the store has before that key, or all the rest; returns the row reached.
    const StoreRow* RemoveUpTo(const StoreKey* key) {
        const StoreRow* stored = cursor_->Row();
        for (; stored != nullptr && (key == nullptr || cursor_->Key() < *key); stored = cursor_->Row()) {
            Change(stored, nullptr, cursor_->Key());
            cursor_->Next();
        }
        return stored;
    }

    // All that waits, and before it the nodes that it changes as they are.
    void Settle() {
        const auto take = [this](const NodePlace& place, NodeContent before) {
            plan_.nodes[place] = std::move(before);
        };
        if (mode_ == Mode::Write) {
            history_.Keep(newlyTouched_, Work, take);
        } else {
            history_.RequireIdle(newlyTouched_);
            ReadContents(dataBase_, newlyTouched_, take);
        }
        newlyTouched_.clear();
        writes_->Send([this](const StoreRow&) {
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "A row of " + table_->name + " could not be changed");
        });
    }

    void Remember(const StoreRow* before, const StoreRow* after) {
        const auto copied = [this](const StoreRow* row) {
            if (row == nullptr) {
                return std::optional<StoreRow>();
            }
            for (const auto& field : *row) {
                plannedBytes_ += sizeof field + (field ? field->size() : 0);
            }
            return std::optional(*row);
        };
        plan_.changes.push_back({table_, copied(before), copied(after)});
        if (IsTooLarge()) {
            plan_.changes.clear();
        }
    }

    void Change(const StoreRow* before, const StoreRow* after, const StoreKey& key) {
        const auto place = owners_->AutoNodeOf(key);
        if (place && place != latest_ && plan_.nodes.try_emplace(*place).second) {
            newlyTouched_.push_back(*place);
        }
        latest_ = place ? place : latest_;
        if (mode_ == Mode::Write) {
            Put(*writes_, before, after);
            if (writes_->AreMany()) {
                Settle();
            }
        } else if (mode_ == Mode::Plan) {
            Remember(before, after);
        }
        ++(before == nullptr ? counts_.added : after == nullptr ? counts_.removed : counts_.changed);
        if (place && owners_->AreToldAsNodes()) {
            return;
        }
        if (counts_.rows.size() == MostRowsTold) {
            ++counts_.untold;
            return;
        }
        const char* what = before == nullptr ? "added " : after == nullptr ? "removed " : "changed ";
        counts_.rows.push_back(what + KeyText(*table_, after != nullptr ? *after : *before) +
                               (before != nullptr && after != nullptr ? Differing(*before, *after) : ""));
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
    Mode mode_;
    const ImportProgress& progress_;
    std::uint64_t rows_ = 0;
    ExchangeReport report_;
    // Of the table that is being gone over.
    const StoreTable* table_ = nullptr;
    std::optional<RowOwners> owners_;
    std::optional<TableCursor> cursor_;
    std::optional<RowWrites> writes_;
    ExchangeReport::Table counts_;
    std::optional<NodePlace> latest_;     // of them
    std::vector<NodePlace> newlyTouched_; // by what is not written yet, and not kept yet
    RowPlan plan_{Work, {}, {}}; // the nodes that are touched, as they were, and in that mode the rows
    std::size_t plannedBytes_ = 0;
};

// Brings the rows of some AUTO nodes into a store that holds nothing else.
class Scratch : public ExchangeSink {
  public:
    explicit Scratch(const std::vector<NodePlace>& places) : places_(places.begin(), places.end()) {}

    void TakeScope(std::optional<Partition>) override {}

    void TakeTable(const StoreTable& table) override {
        table_ = &table;
        taken_.insert(&table);
        owners_.emplace(table);
        writes_.emplace(store_, table);
    }

    void TakeRow(const StoreRow& row, std::uint64_t /*line*/) override {
        const auto place = owners_->AutoNodeOf(RowKeyOf(*table_, row));
        if (place && places_.contains(*place)) {
            writes_->Insert(row);
            if (writes_->AreMany()) {
                TakeEndOfTable();
            }
        }
    }

    void TakeEndOfTable() override {
        writes_->Send([](const StoreRow&) {});
    }

    // What a text leaves as it is.
    void TakeRest(DataBase& dataBase, std::optional<Partition> scope) {
        for (const char* name : TablesOfAutoNodes()) {
            const StoreTable& table = *FindTable(name);
            if (taken_.contains(&table)) {
                continue;
            }
            TakeTable(table);
            for (TableCursor cursor(dataBase, table, scope); const StoreRow* row = cursor.Row();
                 cursor.Next()) {
                TakeRow(*row, 0);
            }
            TakeEndOfTable();
        }
    }

    [[nodiscard]] DataBase& Store() { return store_; }

  private:
    std::set<NodePlace> places_;
    DataBase store_{OpenScratchStore()};
    std::set<const StoreTable*> taken_;
    const StoreTable* table_ = nullptr;
    std::optional<RowOwners> owners_;
    std::optional<RowWrites> writes_;
};

void Read(const std::filesystem::path& file, DataBase& dataBase, ExchangeSink& sink) {
    ReadExchangeFile(file, "Cannot import", sink,
                     dataBase.TakesAnyBytes() ? AnyBytes::Take : AnyBytes::Refuse);
}

// What a server holds of all that an import compares, in short: sums of its rows' texts.
std::set<std::string> SumsOf(DataBase& dataBase, const std::optional<Partition>& scope) {
    std::set<std::string> sums;
    std::string sql;
    for (const StoreTable& table : StoreTables()) {
        if (scope && !table.partitioned) {
            continue;
        }
        sql += (sql.empty() ? "SELECT '" : " UNION ALL SELECT '") + table.name +
               " ' || COUNT(*) || ' ' || COALESCE(SUM(hashtextextended(CAST(t AS text), 0)), 0) FROM " +
               table.name + " t";
        if (scope) {
            sql += " WHERE " + table.columns[table.key[0]].name + " = " + std::to_string(scope->config) +
                   " AND " + table.columns[table.key[1]].name + " = " + std::to_string(scope->number);
        }
    }
    const auto statement = dataBase.Prepare(sql);
    for (statement->Run({}); !statement->AtEnd(); statement->MoveNext()) {
        sums.emplace(statement->Field(0).value_or(""));
    }
    statement->Close();
    return sums;
}

} // namespace

ExchangeReport ImportExchange(DataBase& dataBase, const std::filesystem::path& file, Import how,
                              const ExchangeNode& tell, const ImportProgress& progress,
                              const std::string& note, RowPlan* plan) {
    for (int attempt = 1;; ++attempt) {
        Comparison import(dataBase, how == Import::Carry || plan != nullptr ? Mode::Plan : Mode::Tell,
                          progress, note);
        const bool remote = dataBase.IsRemote();
        const auto mark = remote ? std::nullopt : dataBase.ChangeMark();
        std::set<std::string> sums;
        {
            const Snapshot snapshot(dataBase);
            Read(file, dataBase, import);
            if (how == Import::OnlyTell) {
                Scratch scratch(import.Places());
                Read(file, dataBase, scratch);
                scratch.TakeRest(dataBase, import.Report().scope);
                import.TellNodes(scratch.Store(), tell);
                if (plan != nullptr && import.IsTooLarge()) {
                    throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                                       "The import changes more than a plan holds, 64 MiB");
                }
                if (plan != nullptr) {
                    *plan = std::move(import.Planned());
                }
                return std::move(import.Report());
            }
            if (remote) {
                sums = SumsOf(dataBase, import.Report().scope);
            }
        }
        if (import.Report().tables.empty()) {
            return std::move(import.Report());
        }
        if (!History(dataBase).Prepare()) {
            throw RuntimeError(ErrorNumber::PermissionDenied,
                               "The store may not keep the nodes as they were, so that nothing is imported");
        }
        Transaction all(dataBase);
        const auto isAsCompared = [&] {
            return remote ? SumsOf(dataBase, import.Report().scope) == sums
                          : mark && dataBase.ChangeMark() == mark;
        };
        std::optional<Comparison> direct;
        if (import.IsTooLarge() || attempt == MostPlans) {
            Read(file, dataBase, direct.emplace(dataBase, Mode::Write, progress, note));
        } else if (!isAsCompared() || !import.CarryOut()) {
            continue; // also where others have changed what was as in the text
        }
        Comparison& done = direct ? *direct : import;
        done.TellNodes(dataBase, tell);
        all.Commit();
        dataBase.Flush();
        return std::move(done.Report());
    }
}

} // namespace KAL_AUTO_Node
