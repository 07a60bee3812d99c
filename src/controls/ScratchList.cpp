#include "controls/ScratchList.h"

namespace KAL_AUTO_Node {

void ScratchList::AddItem(const QString& text) {
    const int index = ListCount();
    const QString folded = text.toCaseFolded();
    items_.append(text);
    if (!exact_.contains(folded)) {
        exact_.insert(folded, index);
        sorted_.emplace(folded, index);
    }
}

void ScratchList::Clear() {
    items_.clear();
    exact_.clear();
    sorted_.clear();
}

int ScratchList::FindStringExact(const QString& text) const { return exact_.value(text.toCaseFolded(), -1); }

int ScratchList::FindString(const QString& text) const {
    const QString folded = text.toCaseFolded();
    const auto candidate = sorted_.lower_bound(folded);
    return candidate != sorted_.end() && candidate->first.startsWith(folded) ? candidate->second : -1;
}

} // namespace KAL_AUTO_Node
