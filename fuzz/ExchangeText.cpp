// The text that a store is carried over in: any text is told to its end or refused with its line, and what is
// told is what the tables can hold, in order.

#include "exchange/ExchangeReader.h"
#include "fuzz/Examine.h"
#include "platform/RuntimeError.h"

#include <sstream>

namespace KAL_AUTO_Node {

namespace {

class Told : public ExchangeSink {
  public:
    void TakeScope(std::optional<Partition> scope) override {
        Require(table_ == nullptr, "the scope comes before the tables");
        scope_ = scope;
    }

    void TakeTable(const StoreTable& table) override {
        Require(table_ == nullptr, "a table ends before the next begins");
        table_ = &table;
        before_.reset();
    }

    void TakeRow(const StoreRow& row, std::uint64_t /*line*/) override {
        Require(table_ != nullptr && row.size() == table_->columns.size(), "a row is one of a table");
        for (std::size_t column = 0; column < row.size(); ++column) {
            auto value = row[column];
            Require(!WhyNot(table_->columns[column], value) && value == row[column],
                    "its column can hold a value");
        }
        const StoreKey key = RowKeyOf(*table_, row);
        Require(!before_ || *before_ < key, "rows come in the order of their keys");
        Require(!scope_ || (key[0] == scope_->config && key[1] == scope_->number),
                "a row is one of the scope");
        before_ = key;
    }

    void TakeEndOfTable() override { table_ = nullptr; }

  private:
    std::optional<Partition> scope_;
    const StoreTable* table_ = nullptr;
    std::optional<StoreKey> before_;
};

} // namespace

void Examine(std::string_view input) {
    std::istringstream text{std::string(input)};
    Told told;
    try {
        ReadExchange(text, told);
    } catch (const RuntimeError& error) {
        Require(error.Number() == ErrorNumber::StoreNotRecognized &&
                    std::string_view(error.what()).starts_with("line "),
                "a text that is refused is so with its line");
    }
}

} // namespace KAL_AUTO_Node
