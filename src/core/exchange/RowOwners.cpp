#include "exchange/RowOwners.h"

#include "nodes/NodeTypes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr std::array<const char*, 4> Names = {"Node_AUTO", "Detail_AUTO_Prompts", "Detail_AUTO_Action",
                                              "Node_General_Pool"};

} // namespace

std::span<const char* const> TablesOfAutoNodes() { return Names; }

RowOwners::RowOwners(const StoreTable& table) {
    if (std::ranges::find(Names, table.name) == Names.end()) {
        return;
    }
    const auto placeInKey = [&](const char* column) {
        const auto found = std::ranges::find(table.key, FindColumn(table, column).value());
        return static_cast<std::size_t>(found - table.key.begin());
    };
    const bool isDetail = table.name.starts_with("Detail_");
    number_ = placeInKey(isDetail ? "NodeMasterID" : "NodeNumber");
    type_ = isDetail ? std::nullopt : std::optional(placeInKey("NodeTypeID"));
    told_ = table.name != Names.back(); // the register's entry is told by itself
}

std::optional<NodePlace> RowOwners::AutoNodeOf(const StoreKey& key) const {
    // A number that no AUTO node can have is another program's.
    const auto small = [](std::int64_t number) { return std::in_range<std::int16_t>(number); };
    if (!number_ || (type_ && key.at(*type_) != AutoType) || !small(key[0]) || !small(key[1]) ||
        !small(key.at(*number_))) {
        return std::nullopt;
    }
    const auto part = [&](std::size_t i) { return static_cast<std::int16_t>(key.at(i)); };
    return NodePlace{{part(0), part(1)}, part(*number_)};
}

} // namespace KAL_AUTO_Node
