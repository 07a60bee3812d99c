#include "editor/UndoStack.h"

#include "editor/RowHistory.h"
#include "feedback/ErrorReport.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

std::size_t Bytes(const RowChange& change) {
    std::size_t bytes = sizeof change + change.numbers.size() * sizeof(int) +
                        (change.outAt.size() + change.inAt.size()) * sizeof(RowRun);
    for (const ListRow& row : change.out) {
        bytes += sizeof row;
        for (const QString& text : {row.name, row.shown, row.label, row.low, row.high}) {
            bytes += static_cast<std::size_t>(text.size()) * sizeof(QChar);
        }
    }
    return bytes;
}

} // namespace

void UndoStack::Push(Deed deed) {
    deeds_.resize(done_);
    if (deed.editedRow >= 0 && CanUndo() && deeds_.back().history == deed.history &&
        deeds_.back().editedRow == deed.editedRow) {
        if (deed.history->IsAsBefore(deeds_.back().changes.front())) {
            deeds_.pop_back();
        }
        done_ = deeds_.size();
        return;
    }
    const std::size_t bytes =
        std::transform_reduce(deed.changes.begin(), deed.changes.end(), std::size_t{0}, std::plus(), Bytes);
    deeds_.push_back({std::move(deed), bytes});
    std::size_t all = std::transform_reduce(deeds_.begin(), deeds_.end(), std::size_t{0}, std::plus(),
                                            [](const Kept& kept) { return kept.bytes; });
    while (deeds_.size() > 1 && (deeds_.size() > MostDeeds || all > MostBytes)) {
        all -= deeds_.front().bytes;
        deeds_.pop_front();
    }
    done_ = deeds_.size();
}

void UndoStack::Undo() {
    if (CanUndo()) {
        Reporting("Undo", [this] {
            Deed& deed = deeds_[done_ - 1];
            deed.history->Restore(deed.changes);
            --done_;
        });
    }
}

void UndoStack::Redo() {
    if (CanRedo()) {
        Reporting("Redo", [this] {
            Deed& deed = deeds_[done_];
            deed.history->Restore(deed.changes);
            ++done_;
        });
    }
}

void UndoStack::Clear() {
    deeds_.clear();
    done_ = 0;
}

} // namespace KAL_AUTO_Node
