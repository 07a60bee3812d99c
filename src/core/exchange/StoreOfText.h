#pragma once

#include "exchange/ExchangeReader.h"
#include "store/DataBase.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <tuple>

namespace KAL_AUTO_Node {

class RowWrites;

// A text form as a store in memory, to be looked at before it is brought anywhere.
class StoreOfText : private ExchangeSink {
  public:
    // A partition's text tells nothing of the node types and what may refer to them: that is the reference
    // store's then, or the demo's where there is none. Raises what ReadExchangeFile does.
    StoreOfText(const std::filesystem::path& file, DataBase* reference);
    ~StoreOfText() override;

    StoreOfText(const StoreOfText&) = delete;
    StoreOfText& operator=(const StoreOfText&) = delete;

    [[nodiscard]] DataBase& Store() { return store_; }

    // The partition that it is of; nothing where it is a whole store.
    [[nodiscard]] std::optional<Partition> Scope() const { return scope_; }

    // The line of a node's row in a table, or of the node's record where the table is not named or has no
    // such row; nothing where the text has neither.
    [[nodiscard]] std::optional<std::uint64_t> LineOf(Partition partition, int typeID, int number,
                                                      std::string_view table, int row) const;

  private:
    // A table, a node of it, the number of a row in its list.
    using Place = std::tuple<const StoreTable*, StoreKey, std::int64_t>;

    void TakeScope(std::optional<Partition> scope) override { scope_ = scope; }

    void TakeTable(const StoreTable& table) override;
    void TakeRow(const StoreRow& row, std::uint64_t line) override;
    void TakeEndOfTable() override;

    // The tables that belong to no partition.
    void TakeReferenceData(DataBase& from);

    DataBase store_;
    std::optional<Partition> scope_;
    const StoreTable* table_ = nullptr;
    std::unique_ptr<RowWrites> writes_;
    std::map<Place, std::uint64_t> lines_;
};

} // namespace KAL_AUTO_Node
