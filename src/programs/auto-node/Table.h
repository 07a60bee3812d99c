#pragma once

#include "platform/Counted.h"

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// Rows of texts, printed in aligned columns. Texts are made visible.
class Table {
  public:
    enum class Align { Left, Right };

    // One entry a column.
    explicit Table(std::vector<Align> columns, std::string indent = "")
        : columns_(std::move(columns)), indent_(std::move(indent)) {}

    // As many cells as there are columns.
    void Add(std::vector<std::string> cells);

    void Print(std::ostream& out) const;

  private:
    std::vector<Align> columns_;
    std::string indent_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace KAL_AUTO_Node
