#pragma once

#include "exchange/Tables.h"
#include "nodes/Identity.h"

#include <cstddef>
#include <optional>
#include <span>

namespace KAL_AUTO_Node {

// The tables in which AUTO nodes have rows.
[[nodiscard]] std::span<const char* const> TablesOfAutoNodes();

// Whose the rows of a table are.
class RowOwners {
  public:
    explicit RowOwners(const StoreTable& table);

    // The AUTO node that a row of that key is one of.
    [[nodiscard]] std::optional<NodePlace> AutoNodeOf(const StoreKey& key) const;

    // Whether what its rows hold of an AUTO node is content that is told as the node's.
    [[nodiscard]] bool AreToldAsNodes() const { return told_; }

  private:
    std::optional<std::size_t>
        number_; // where in the key, as the one below; none where no row is an AUTO node's
    std::optional<std::size_t> type_; // none where all are
    bool told_ = false;
};

} // namespace KAL_AUTO_Node
