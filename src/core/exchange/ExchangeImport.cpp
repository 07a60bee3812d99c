#include "exchange/ExchangeImport.h"

#include "exchange/ExchangeReader.h"
#include "exchange/RowWrites.h"
#include "exchange/TableCursor.h"
#include "history/History.h"
#include "nodes/NodeTypes.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <map>
#include <system_error>
#include <vector>

namespace KAL_AUTO_Node {

namespace {

// More are counted, but a person has seen enough by then.
constexpr std::size_t MostRowsTold = 100;

// In which tables an AUTO node has rows, and which columns of their keys say whose they are.
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

// Goes over a table of the store and over its rows in the text side by side, both in the order of their keys.
class ExchangeImport : public ExchangeSink {
  public:
    ExchangeImport(DataBase& dataBase, bool keepsHistory, const ExchangeNode& tell)
        : dataBase_(dataBase), history_(dataBase), keepsHistory_(keepsHistory), tell_(tell) {}

    void TakeScope(std::optional<Partition> scope) override { report_.scope = scope; }

    void TakeTable(const StoreTable& table) override {
        table_ = &table;
        cursor_.emplace(dataBase_, table, report_.scope);
        writes_.emplace(dataBase_, table);
        counts_ = {table.name, 0, 0, 0, {}, 0};
        nodeRows_ = std::ranges::find(AutoNodeRows, table.name, &NodeRows::table);
        isToldAsNodes_ = nodeRows_ - AutoNodeRows.begin() < std::ptrdiff_t{TablesToldAsNodes};
        if (nodeRows_ != AutoNodeRows.end()) {
            number_ = PlaceInKey(nodeRows_->number);
            type_ = nodeRows_->type != nullptr ? std::optional(PlaceInKey(nodeRows_->type)) : std::nullopt;
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
            Change(&RowWrites::Insert, counts_.added, "added", row, key);
            return;
        }
        if (*stored != row) {
            Change(&RowWrites::Update, counts_.changed, "changed", row, key, Differing(*stored, row));
        }
        cursor_->Next();
    }

    void TakeEndOfTable() override {
        RemoveUpTo(nullptr);
        Write();
        if (counts_.added + counts_.changed + counts_.removed > 0) {
            report_.tables.push_back(std::move(counts_));
        }
        writes_.reset();
        cursor_.reset();
    }

    ExchangeReport Finish() {
        std::vector<NodePlace> places;
        for (const auto& [place, before] : touched_) {
            places.push_back(place);
        }
        ReadContents(dataBase_, places, [this](const NodePlace& place, const NodeContent& after) {
            tell_(place, touched_.at(place), after.node);
        });
        return std::move(report_);
    }

  private:
    [[nodiscard]] std::size_t PlaceInKey(const char* column) const {
        const auto found = std::ranges::find(table_->key, FindColumn(*table_, column).value());
        return static_cast<std::size_t>(found - table_->key.begin());
    }

    // Removes what the store has before that key, or all the rest; returns the row reached.
    const StoreRow* RemoveUpTo(const StoreKey* key) {
        const StoreRow* stored = cursor_->Row();
        for (; stored != nullptr && (key == nullptr || cursor_->Key() < *key); stored = cursor_->Row()) {
            Change(&RowWrites::Remove, counts_.removed, "removed", *stored, cursor_->Key());
            cursor_->Next();
        }
        return stored;
    }

    // Whether the row of that key is one of an AUTO node's. Before the first of them changes, the node is
    // kept as it is.
    bool Touch(const StoreKey& key) {
        if (nodeRows_ == AutoNodeRows.end()) {
            return false;
        }
        const std::array numbers = {key[0], key[1], key.at(number_)};
        // A number that no AUTO node can have is another program's.
        if ((type_ && key.at(*type_) != AutoType) ||
            !std::ranges::all_of(numbers, [](std::int64_t n) { return std::in_range<std::int16_t>(n); })) {
            return false;
        }
        const auto small = [&](std::size_t i) { return static_cast<std::int16_t>(numbers[i]); };
        const NodePlace place{{small(0), small(1)}, small(2)};
        if (place != latest_ && touched_.try_emplace(place).second) {
            newlyTouched_.push_back(place);
        }
        latest_ = place;
        return true;
    }

    // All that waits, and what has to be kept before it.
    void Write() {
        const auto take = [this](const NodePlace& place, NodeContent before) {
            touched_[place] = std::move(before.node);
        };
        if (keepsHistory_) {
            history_.Keep(newlyTouched_, "import", take);
        } else {
            ReadContents(dataBase_, newlyTouched_, take);
        }
        newlyTouched_.clear();
        writes_->Send([this](const StoreRow&) {
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "A row of " + table_->name + " could not be changed");
        });
    }

    void Change(void (RowWrites::*write)(const StoreRow&), std::uint64_t& count, const char* what,
                const StoreRow& row, const StoreKey& key, const std::string& columns = "") {
        const bool isNode = Touch(key);
        ((*writes_).*write)(row);
        if (writes_->AreMany()) {
            Write();
        }
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
    std::optional<RowWrites> writes_;
    ExchangeReport::Table counts_;
    const NodeRows* nodeRows_ = AutoNodeRows.end(); // the end where no row of the table is an AUTO node's
    bool isToldAsNodes_ = false;
    std::size_t number_ = 0; // where in the key
    std::optional<std::size_t> type_;
    std::map<NodePlace, std::optional<AutoNode>> touched_; // as they were
    std::optional<NodePlace> latest_;                      // of them
    std::vector<NodePlace> newlyTouched_;                  // by what is not written yet, and not kept yet
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
