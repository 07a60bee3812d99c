#include "nodes/ScratchList.h"

#include "platform/FoldCase.h"

#include <utility>

namespace KAL_AUTO_Node {

void ScratchList::AddItem(std::string text) {
    if (exact_ || sorted_) {
        const std::string folded = FoldCase(text);
        if (exact_) {
            exact_->emplace(folded, items_.size());
        }
        if (sorted_) {
            sorted_->emplace(folded, items_.size());
        }
    }
    items_.push_back(std::move(text));
}

std::optional<std::size_t> ScratchList::FindStringExact(std::string_view text) {
    if (!exact_) {
        exact_.emplace();
        for (std::size_t position = 0; position < items_.size(); ++position) {
            exact_->emplace(FoldCase(items_[position]), position);
        }
    }
    const auto found = exact_->find(FoldCase(text));
    return found == exact_->end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> ScratchList::FindString(std::string_view text) {
    if (!sorted_) {
        sorted_.emplace();
        for (std::size_t position = 0; position < items_.size(); ++position) {
            sorted_->emplace(FoldCase(items_[position]), position);
        }
    }
    const std::string folded = FoldCase(text);
    const auto candidate = sorted_->lower_bound(folded);
    const bool begins = candidate != sorted_->end() && candidate->first.starts_with(folded);
    return begins ? std::optional(candidate->second) : std::nullopt;
}

} // namespace KAL_AUTO_Node
