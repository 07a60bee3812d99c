#include "nodes/Merging.h"
#include "nodes/NodeTypes.h"
#include "platform/FoldCase.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

std::string TextOf(const Reference& reference) {
    return std::to_string(reference.typeID) + ' ' + std::to_string(reference.number) + ' ' + reference.type;
}

ListKind KindOf(const Prompt& /*row*/) { return ListKind::Ordered; }

ListKind KindOf(const Action& /*row*/) { return ListKind::Named; }

template <class Row>
std::vector<ListedRow> ListedRows(const std::vector<Row>& rows) {
    std::vector<ListedRow> listed;
    std::ranges::transform(rows, std::back_inserter(listed), [](const Row& row) { return ListedOf(row); });
    return listed;
}

template <class Row>
bool MergeRows(const std::vector<Row>& before, const std::vector<Row>& one, const std::vector<Row>& other,
               std::vector<Row>& merged) {
    const auto rows = MergeLists(ListedRows(before), ListedRows(one), ListedRows(other), KindOf(Row()));
    merged.clear();
    for (std::size_t i = 0; rows && i < rows->size(); ++i) {
        const auto& [ofOther, place] = (*rows)[i];
        merged.push_back((ofOther ? other : one)[place]);
        merged.back().sequence = static_cast<int>(i) + 1;
    }
    return rows.has_value();
}

} // namespace

ListedRow ListedOf(const Prompt& prompt) {
    const std::string target = TextOf(prompt.target);
    return {target, target, prompt.target.typeID == NumberlessType};
}

ListedRow ListedOf(const Action& action) {
    const auto text = [](const std::optional<std::string>& end) { return end ? '=' + *end : std::string(); };
    return {FoldCase(EntryText(action)),
            text(action.low) + '-' + text(action.high) + ' ' + TextOf(action.target), false};
}

std::optional<AutoNode> MergeNodes(const AutoNode& before, const AutoNode& one, const AutoNode& other) {
    AutoNode merged = one;
    bool settled = true;
    const auto merge = [&](auto part) {
        switch (WhichStands(part(before), part(one), part(other))) {
        case Stands::One:
            break;
        case Stands::Other:
            part(merged) = part(other);
            break;
        case Stands::Neither:
            settled = false;
        }
    };
    merge([](auto& node) -> auto& { return node.type; });
    merge([](auto& node) -> auto& { return node.label; });
    merge([](auto& node) -> auto& { return node.settings.terminatingDigit; });
    for (const SettingField& rule : SettingFields) {
        merge([&](auto& node) -> auto& { return node.settings.*rule.value; });
    }
    for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
        merge([&](auto& node) -> auto& { return node.branches.at(branch); });
    }
    settled = settled && MergeRows(before.prompts, one.prompts, other.prompts, merged.prompts) &&
              MergeRows(before.actions, one.actions, other.actions, merged.actions);
    return settled ? std::optional(std::move(merged)) : std::nullopt;
}

} // namespace KAL_AUTO_Node
