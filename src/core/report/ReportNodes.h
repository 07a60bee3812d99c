#pragma once

#include "report/ReportData.h"

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

struct Target;

// A text of the store in the page: by itself, whatever its direction, and nothing in it markup. A longer one
// is cut there: it would hide the rest of the page.
inline constexpr std::size_t LabelLimit = 80; // characters
[[nodiscard]] std::string LabelMarkup(std::string_view text, std::size_t limit = LabelLimit);

// The sign of a finding, which tells its severity also to those who do not see colours.
[[nodiscard]] std::string SignMarkup(Severity severity);

// Which nodes have a place in the page, and how it refers to them. All texts that are returned are markup.
class ReportNodes {
  public:
    explicit ReportNodes(const ReportData& data);

    // Messages and nodes of other types, which stand in tables: of each type by number.
    [[nodiscard]] const std::map<int, std::vector<int>>& Listed() const { return listed_; }

    // "AUTO-12"; empty for a node that the page does not tell of.
    [[nodiscard]] std::string PlaceOf(const NodeKey& node) const;
    // A text that leads to the node, where it has a place.
    [[nodiscard]] std::string Link(const NodeKey& node, const std::string& text) const;
    // "AUTO 12 Main menu"
    [[nodiscard]] std::string Named(const NodeKey& node) const;
    // What a reference leads to, as it is stored, with the label; or that it is missing.
    [[nodiscard]] std::string Named(const Reference& reference, Slot from) const;
    [[nodiscard]] std::string Named(const Target& target) const;
    // From where a node is used: each holder with the places. Of many the first.
    [[nodiscard]] std::string UsedFrom(const NodeKey& node) const;

  private:
    [[nodiscard]] std::string Told(const NodeKey& node, const std::string& name, bool isNode) const;

    const ReportData& data_;
    std::map<int, std::string> words_; // how the places of a type begin
    std::map<int, std::vector<int>> listed_;
    std::set<NodeKey> placed_;
};

// Items one behind the other; of more than the limit so many, and how many there are besides.
[[nodiscard]] std::string Joined(const std::vector<std::string>& items, std::size_t limit,
                                 std::string_view between = ", ");

} // namespace KAL_AUTO_Node
