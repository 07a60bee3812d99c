#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// Pairs of rows that two lists have in common, in order: their longest common subsequence, of which the equal
// beginnings and ends are always part. Between those, beyond this many pairs, none is looked for: it would
// take longer than anybody waits.
inline constexpr std::size_t MostPairs = 4'000'000;

template <class Same> // of a place before and one after
[[nodiscard]] std::vector<std::pair<std::size_t, std::size_t>> Matches(std::size_t before, std::size_t after,
                                                                       Same same) {
    std::vector<std::pair<std::size_t, std::size_t>> pairs;
    std::size_t start = 0;
    while (start < std::min(before, after) && same(start, start)) {
        pairs.emplace_back(start, start);
        ++start;
    }
    std::size_t end = 0;
    while (end < std::min(before, after) - start && same(before - 1 - end, after - 1 - end)) {
        ++end;
    }
    const std::size_t rows = before - start - end;
    const std::size_t columns = after - start - end;
    if (rows > 0 && columns > 0 && rows * columns <= MostPairs) {
        std::vector<std::uint32_t> lengths((rows + 1) * (columns + 1));
        const auto length = [&](std::size_t row, std::size_t column) -> std::uint32_t& {
            return lengths[row * (columns + 1) + column];
        };
        for (std::size_t row = rows; row-- > 0;) {
            for (std::size_t column = columns; column-- > 0;) {
                length(row, column) = same(start + row, start + column)
                                          ? length(row + 1, column + 1) + 1
                                          : std::max(length(row + 1, column), length(row, column + 1));
            }
        }
        for (std::size_t row = 0, column = 0; row < rows && column < columns;) {
            if (same(start + row, start + column)) {
                pairs.emplace_back(start + row++, start + column++);
            } else if (length(row + 1, column) >= length(row, column + 1)) {
                ++row;
            } else {
                ++column;
            }
        }
    }
    for (; end > 0; --end) {
        pairs.emplace_back(before - end, after - end);
    }
    return pairs;
}

} // namespace KAL_AUTO_Node
