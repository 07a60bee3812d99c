#include "editor/RowHistory.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Whether all that changed is what the row at a place holds.
bool IsOfRow(const RowChange& change, int row) {
    return change.InPlace() && change.outAt == std::vector{RowRun{row, 1}};
}

} // namespace

RowHistory::RowHistory(ListView& list, UndoStack& stack) : list_(list), stack_(stack) {
    connect(&list, &ListView::Changed, this, &RowHistory::Note);
}

RowHistory::Deed::Deed(RowHistory& history, const QPersistentModelIndex& edited)
    : history_(history), edited_(edited) {
    ++history_.deeds_;
}

RowHistory::Deed::~Deed() {
    if (--history_.deeds_ == 0) {
        history_.EndDeed(edited_);
    }
}

void RowHistory::Note(RowChange& change) {
    if (deeds_ == 0) {
        stack_.Clear();
        return;
    }
    // What a row became in between is nobody's concern.
    if (changes_.empty() || change.outAt.empty() || !IsOfRow(change, change.outAt.front().first) ||
        !IsOfRow(changes_.back(), change.outAt.front().first)) {
        changes_.push_back(std::move(change));
    }
}

bool RowHistory::IsAsBefore(const RowChange& change) const {
    auto before = change.out.begin();
    return change.InPlace() && std::ranges::all_of(change.outAt, [&](const RowRun& run) {
               const auto now = list_.Rows().begin() + run.first;
               return std::equal(now, now + run.count, std::exchange(before, before + run.count));
           });
}

void RowHistory::EndDeed(const QPersistentModelIndex& edited) {
    std::vector<RowChange> changes = std::exchange(changes_, {});
    if (changes.size() == 1 && changes.front().numbers.empty() && IsAsBefore(changes.front())) {
        return;
    }
    if (changes.empty()) {
        return;
    }
    const bool ofRow = edited.isValid() && std::ranges::all_of(changes, [&](const RowChange& change) {
                           return IsOfRow(change, edited.row());
                       });
    stack_.Push({this, ofRow ? editedRow_ : -1, std::move(changes)});
}

void RowHistory::Restore(std::vector<RowChange>& changes) {
    int first = std::numeric_limits<int>::max();
    std::ranges::reverse(changes);
    for (RowChange& change : changes) {
        change = list_.TakeBack(std::move(change));
        for (const auto* runs : {&change.outAt, &change.inAt}) {
            first = runs->empty() ? first : std::min(first, runs->front().first);
        }
    }
    if (list_.Count() > 0) {
        list_.Select(std::min(first, list_.Count() - 1));
    }
    list_.setFocus(Qt::OtherFocusReason);
    emit Restored();
}

} // namespace KAL_AUTO_Node
