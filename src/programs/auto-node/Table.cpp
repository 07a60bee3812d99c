#include "auto-node/Table.h"

#include "platform/VisibleText.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

// A column is no wider for one cell that is: else each row would be as long as the longest text that is
// stored.
constexpr std::size_t Widest = 100;

} // namespace

void Table::Add(std::vector<std::string> cells) {
    std::ranges::transform(cells, cells.begin(), Visible);
    cells.resize(columns_.size());
    rows_.push_back(std::move(cells));
}

void Table::Print(std::ostream& out) const {
    std::vector<std::size_t> widths(columns_.size());
    for (const auto& row : rows_) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            widths[column] = std::max(widths[column], std::min(Widest, DisplayWidth(row[column])));
        }
    }
    for (const auto& row : rows_) {
        std::string line = indent_;
        for (std::size_t column = 0; column < widths.size(); ++column) {
            const std::string room(widths[column] - std::min(widths[column], DisplayWidth(row[column])), ' ');
            line += columns_[column] == Align::Right ? room + row[column] : row[column] + room;
            line += "  ";
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    }
}

} // namespace KAL_AUTO_Node
