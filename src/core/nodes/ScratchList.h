#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace KAL_AUTO_Node {

// Texts in the order in which they were added, searched without regard to case. What a kind of search needs
// is built by the first search of that kind, so that a list which is only read costs no more.
class ScratchList {
  public:
    void AddItem(std::string text);

    [[nodiscard]] std::size_t ListCount() const { return items_.size(); }

    [[nodiscard]] const std::string& List(std::size_t index) const { return items_.at(index); }

    // The first entry that equals the text; in constant time.
    [[nodiscard]] std::optional<std::size_t> FindStringExact(std::string_view text);
    // An entry that begins with the text; in logarithmic time.
    [[nodiscard]] std::optional<std::size_t> FindString(std::string_view text);

  private:
    std::vector<std::string> items_;
    // Positions by the texts without case.
    std::optional<std::unordered_map<std::string, std::size_t>> exact_;
    std::optional<std::map<std::string, std::size_t>> sorted_;
};

// The first text that an earlier one equals, whatever the case, by its position.
template <class Texts>
[[nodiscard]] std::optional<std::size_t> FirstDuplicate(const Texts& texts) {
    ScratchList known;
    std::size_t position = 0;
    for (const std::string& text : texts) {
        if (known.FindStringExact(text)) {
            return position;
        }
        known.AddItem(text);
        ++position;
    }
    return std::nullopt;
}

} // namespace KAL_AUTO_Node
