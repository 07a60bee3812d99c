#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// A text of the store for people: of so many characters at most, and visible.
[[nodiscard]] std::string Shortened(std::string_view text, std::size_t characters);

// A visible text of which nothing is markup, neither in XML nor in HTML.
[[nodiscard]] std::string Escaped(std::string_view text);

// Texts in the markup that dot takes as labels.

// A text of the store: shortened, control characters visible, and nothing in it markup.
[[nodiscard]] std::string Markup(std::string_view text);

// A name and what is to be said of it, where there is anything.
[[nodiscard]] std::string Markup(std::string_view name, std::string_view label);

// Entries in one another's order, runs of digit sequences as ranges.
[[nodiscard]] std::string EntriesMarkup(const std::vector<std::string>& entries);

// Lines that are markup; those beyond the limit are counted.
[[nodiscard]] std::string LinesMarkup(const std::vector<std::string>& lines, std::size_t limit);

// A row of a table, of one cell that may have a fill and lead to another place of the picture; none where
// there is no text.
[[nodiscard]] std::string RowMarkup(const std::string& text, const char* fill = nullptr,
                                    const std::string& place = "");

} // namespace KAL_AUTO_Node
