#pragma once

#include "exchange/Merge.h"
#include "exchange/Tables.h"
#include "nodes/Identity.h"

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

enum Side : std::size_t { Base, Ours, Theirs };
template <class Kind>
using OfSides = std::array<Kind, 3>;

// A stretch of a table: rows that are settled, or what each has there, which is for a person to settle.
struct Stretch {
    StoreKey key; // of its first row
    OfSides<std::vector<std::string>> rows;
    bool settled = true; // they are ours
    std::vector<MergeConflict> conflicts;
};

// Puts the stretches of the tables together, in whatever order they come.
class MergedText {
  public:
    void Add(const StoreTable& table, Stretch stretch) { tables_[&table].push_back(std::move(stretch)); }

    // The text with those tables. The conflicts get their lines, in whose order they are appended.
    [[nodiscard]] std::string Write(std::optional<Partition> scope, std::span<const StoreTable* const> tables,
                                    std::vector<MergeConflict>& conflicts);

  private:
    std::map<const StoreTable*, std::vector<Stretch>> tables_;
};

} // namespace KAL_AUTO_Node
