#include "exchange/JetImport.h"

#include "exchange/JetFrames.h"
#include "exchange/RowWrites.h"
#include "exchange/Statements.h"
#include "platform/FoldCase.h"
#include "platform/NumericValue.h"
#include "platform/RuntimeError.h"
#include "store/Connection.h"
#include "store/DataBase.h"

#include <algorithm>
#include <map>
#include <set>

namespace KAL_AUTO_Node {

namespace {

// More are counted, but a person has seen enough by then.
constexpr std::size_t MostTold = 1000;
constexpr std::uint32_t RowsReadBetweenProgress = 1000;

// Rows whose key ends so are a list: the number tells their order and nothing else.
constexpr const char* SequenceColumn = "SequenceNo";

std::string Rows(std::uint64_t count) { return std::to_string(count) + (count == 1 ? " row" : " rows"); }

// Rows of a list that came with a number that another row of it had.
class DoubledSequences {
  public:
    void Add(StoreRow row) { rows_.push_back(std::move(row)); }

    // Puts them where their numbers say, behind those that came before them; whoever stands where no number
    // is left moves on. Returns how many lists that were.
    std::size_t Settle(DataBase& dataBase, const StoreTable& table) {
        const std::span owner = std::span(table.key).first(table.key.size() - 1);
        std::map<StoreRow, std::vector<StoreRow>> lists;
        for (StoreRow& row : rows_) {
            lists[Fields(row, owner)].push_back(std::move(row));
        }
        rows_.clear();
        for (auto& [key, doubled] : lists) {
            SettleList(dataBase, table, owner, key, std::move(doubled));
        }
        return lists.size();
    }

  private:
    static StoreRow Fields(const StoreRow& row, std::span<const std::size_t> columns) {
        StoreRow fields;
        for (const std::size_t column : columns) {
            fields.push_back(row[column]);
        }
        return fields;
    }

    static void SettleList(DataBase& dataBase, const StoreTable& table, std::span<const std::size_t> owner,
                           const StoreRow& key, std::vector<StoreRow> doubled) {
        const auto columns = AllColumns(table);
        std::vector<StoreRow> list;
        const auto select = dataBase.Prepare("SELECT " + Listed(table, columns) + " FROM " + table.name +
                                             " WHERE " + Matching(table, owner));
        for (select->Run(key); !select->AtEnd(); select->MoveNext()) {
            StoreRow& row = list.emplace_back();
            for (const std::size_t column : columns) {
                const auto field = select->Field(column);
                row.push_back(field ? std::optional<std::string>(*field) : std::nullopt);
            }
        }
        select->Close();
        std::ranges::move(doubled, std::back_inserter(list));
        const std::size_t sequence = table.key.back();
        const auto number = [&](const StoreRow& row) { return NumericValue(row[sequence].value_or("")); };
        std::ranges::stable_sort(list, {}, number);
        const auto remove = dataBase.Prepare(DeleteStatement(table, owner));
        remove->Run(key);
        remove->Close();
        RowWrites writes(dataBase, table);
        std::optional<std::int64_t> before;
        for (StoreRow& row : list) {
            before = before ? std::max(number(row), *before + 1) : number(row);
            row[sequence] = std::to_string(*before);
            writes.Insert(row);
        }
        writes.Send([](const StoreRow&) {}); // the list has no other rows
    }

    std::vector<StoreRow> rows_;
};

class JetImport : public JetSink {
  public:
    JetImport(DataBase& dataBase, std::string file, const JetProgress& progress)
        : dataBase_(dataBase), file_(std::move(file)), progress_(progress) {
        for (const StoreTable& table : StoreTables()) {
            report_.tables.push_back({table.name, std::nullopt});
        }
    }

    void TakeTable(const JetTable& told) override {
        table_ = FindTable(told.name);
        if (table_ == nullptr) {
            report_.unknown.push_back(told.name);
            return;
        }
        count_ = &*std::ranges::find(report_.tables, table_->name, &JetReport::Table::name);
        if (count_->stored) {
            Refuse("it has the table " + table_->name + " twice");
        }
        count_->stored = told.rows;
        read_ = 0;
        if (told.columns.empty()) {
            report_.damage.push_back("the definition of " + table_->name + " cannot be read");
        }
        PlaceColumns(told);
        writes_.emplace(dataBase_, *table_);
        progress_(table_->name, 0, told.rows);
    }

    void TakeRow(std::span<const JetValue> values) override {
        if (table_ == nullptr) {
            Refuse("its reader tells of rows that were not asked for");
        }
        ++read_;
        if (Gather(values)) {
            ++count_->taken;
            writes_->Insert(row_);
            if (writes_->AreMany()) {
                Send();
            }
        }
        if (read_ % RowsReadBetweenProgress == 0) {
            progress_(table_->name, read_, *count_->stored);
        }
    }

    void TakeEndOfTable(std::uint32_t unreadableRows) override {
        if (table_ == nullptr) {
            return;
        }
        Send();
        writes_.reset();
        if (const std::size_t lists = doubled_.Settle(dataBase_, *table_); lists > 0) {
            report_.remarks.push_back(table_->name + ": sequence numbers were doubled in " +
                                      std::to_string(lists) + (lists == 1 ? " list" : " lists") +
                                      "; the rows stay in their order, numbered anew from there on");
        }
        if (read_ < *count_->stored || unreadableRows > 0) {
            report_.damage.push_back(
                table_->name + " should hold " + Rows(*count_->stored) + ", and " + std::to_string(read_) +
                " can be read" +
                (unreadableRows > 0 ? ", " + std::to_string(unreadableRows) + " cannot" : ""));
        } else if (read_ > *count_->stored) {
            report_.remarks.push_back(table_->name + ": the file counts fewer rows than it holds");
        }
    }

    void TakeRemark(std::string_view remark) override {
        if (report_.remarks.size() < MostTold) {
            report_.remarks.emplace_back(remark);
        }
    }

    JetReport Finish() {
        if (std::ranges::none_of(report_.tables,
                                 [](const auto& table) { return table.stored.has_value(); })) {
            Refuse("it holds none of this system's tables");
        }
        for (const JetReport::Table& table : report_.tables) {
            if (!table.stored) {
                report_.remarks.push_back(table.name + ": not in the file; it stays empty");
            }
        }
        return std::move(report_);
    }

    [[noreturn]] void Refuse(const std::string& why) const {
        throw RuntimeError(ErrorNumber::StoreNotRecognized, "Cannot bring over '" + file_ + "': " + why);
    }

  private:
    void PlaceColumns(const JetTable& told) {
        columns_.clear();
        places_.clear();
        std::set<std::size_t> found;
        for (std::size_t i = 0; i < told.columns.size(); ++i) {
            const auto column = FindColumn(*table_, told.columns[i]);
            if (column && found.insert(*column).second) {
                columns_.push_back(*column);
                places_.push_back(i);
            } else {
                report_.unknown.push_back(table_->name + '.' + told.columns[i]);
            }
        }
        for (const std::size_t column : AllColumns(*table_)) {
            if (!found.contains(column)) {
                report_.remarks.push_back(table_->name + ": no column " + table_->columns[column].name +
                                          " in the file; it is Null");
                // So that a row without a value that it must have is told as any other.
                columns_.push_back(column);
                places_.push_back(told.columns.size());
            }
        }
        row_.assign(table_->columns.size(), std::nullopt);
    }

    // False where the row cannot be taken; what of it cannot is told.
    bool Gather(std::span<const JetValue> values) {
        std::vector<std::string> lost;
        bool whole = true;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const StoreColumn& column = table_->columns[columns_[i]];
            auto& field = row_[columns_[i]];
            std::optional<std::string> why;
            const JetValue value = places_[i] < values.size() ? values[places_[i]] : JetValue{};
            if (value.state == JetValue::Text) {
                field = value.text;
            } else {
                field.reset();
            }
            if (value.state == JetValue::Unreadable) {
                why = value.text;
            } else {
                why = WhyNot(column, field);
            }
            if (why) {
                lost.push_back(column.name + ' ' + *why);
                field.reset();
                whole = whole && !column.required;
            }
        }
        if (!lost.empty() && MayTell()) {
            Send(); // so that rows are told in their order; it costs time
        }
        for (const std::string& value : lost) {
            (whole ? report_.valuesNotTaken : report_.rowsNotTaken) +=
                whole || &value == &lost.front() ? 1 : 0;
            TellNotTaken(row_, (whole ? "the value: " : "the row: ") + value);
        }
        return whole;
    }

    void Send() {
        writes_->Send([&](const StoreRow& row) {
            if (table_->columns[table_->key.back()].name == SequenceColumn) {
                doubled_.Add(row);
                return;
            }
            --count_->taken;
            ++report_.rowsNotTaken;
            TellNotTaken(row, "the row: another one has its key");
        });
    }

    [[nodiscard]] bool MayTell() const { return report_.notTaken.size() < MostTold; }

    void TellNotTaken(const StoreRow& row, const std::string& what) {
        if (MayTell()) {
            report_.notTaken.push_back(table_->name + ", " + KeyText(*table_, row) + ", " + what);
        }
    }

    DataBase& dataBase_;
    std::string file_;
    const JetProgress& progress_;
    JetReport report_;
    // Of the table that is being told of; none of one that is not known.
    const StoreTable* table_ = nullptr;
    JetReport::Table* count_ = nullptr;
    std::uint32_t read_ = 0;
    std::vector<std::size_t> columns_; // of the store that the file has, in its order
    std::vector<std::size_t> places_;  // of their values in the file's row
    StoreRow row_;
    std::optional<RowWrites> writes_;
    DoubledSequences doubled_;
};

} // namespace

namespace {

void RequireEmpty(DataBase& dataBase) {
    for (const StoreTable& table : StoreTables()) {
        const auto any =
            dataBase.Prepare("SELECT " + table.columns.front().name + " FROM " + table.name + " LIMIT 1");
        any->Run({});
        const bool isEmpty = any->AtEnd();
        any->Close();
        if (!isEmpty) {
            throw RuntimeError(ErrorNumber::DuplicateKey,
                               "'" + dataBase.File().string() +
                                   "' has rows already; a Jet file goes into a new or an empty store");
        }
    }
}

} // namespace

JetReport ImportJet(DataBase& dataBase, const JetReader& reader, const std::filesystem::path& file,
                    Damage damage, const JetProgress& progress) {
    RequireEmpty(dataBase);
    std::vector<std::string> names;
    for (const StoreTable& table : StoreTables()) {
        names.push_back(table.name);
    }
    JetImport import(dataBase, file.string(), progress);
    RunJetReader(reader, file, names, import);
    JetReport report = import.Finish();
    if (!report.damage.empty() && damage == Damage::Refuse) {
        std::string what;
        for (const std::string& part : report.damage) {
            what += what.empty() ? "" : "; ";
            what += part;
        }
        import.Refuse("it is damaged: " + what);
    }
    return report;
}

} // namespace KAL_AUTO_Node
