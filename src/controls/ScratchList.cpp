#include "controls/ScratchList.h"

namespace KAL_AUTO_Node {

void ScratchList::AddItem(const QString& text) {
    const int position = ListCount();
    items_.append(text);
    if (exact_ || sorted_) {
        const QString folded = text.toCaseFolded();
        if (exact_ && !exact_->contains(folded)) {
            exact_->insert(folded, position);
        }
        if (sorted_) {
            sorted_->emplace(folded, position);
        }
    }
}

void ScratchList::Clear() {
    items_.clear();
    exact_.reset();
    sorted_.reset();
}

int ScratchList::FindStringExact(const QString& text) {
    if (!exact_) {
        exact_.emplace();
        for (int position = ListCount() - 1; position >= 0; --position) {
            exact_->insert(items_[position].toCaseFolded(), position);
        }
    }
    return exact_->value(text.toCaseFolded(), -1);
}

int ScratchList::FindString(const QString& text) {
    if (!sorted_) {
        sorted_.emplace();
        for (int position = 0; position < ListCount(); ++position) {
            sorted_->emplace(items_[position].toCaseFolded(), position);
        }
    }
    const QString folded = text.toCaseFolded();
    const auto candidate = sorted_->lower_bound(folded);
    return candidate != sorted_->end() && candidate->first.startsWith(folded) ? candidate->second : -1;
}

} // namespace KAL_AUTO_Node
