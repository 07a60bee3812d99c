#include "editor/RowHistory.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

namespace KAL_AUTO_Node {

// Holds the rows as they were before it, or, once it is taken back, as they were after it.
class RowHistory::Change : public QUndoCommand {
  public:
    Change(RowHistory& history, int editedRow, std::vector<ListRow> before)
        : history_(history), editedRow_(editedRow), other_(std::move(before)) {}

    [[nodiscard]] int id() const override { return editedRow_; }

    bool mergeWith(const QUndoCommand* later) override {
        const auto* change = dynamic_cast<const Change*>(later);
        if (change == nullptr || &change->history_ != &history_) {
            return false;
        }
        setObsolete(other_ == history_.list_.Rows());
        return true;
    }

    void undo() override { other_ = history_.Exchange(std::move(other_)); }

    void redo() override {
        // The stack calls it when it takes the change in, too.
        if (std::exchange(done_, true)) {
            undo();
        }
    }

  private:
    RowHistory& history_;
    int editedRow_; // -1 where none was
    std::vector<ListRow> other_;
    bool done_ = false;
};

RowHistory::RowHistory(ListView& list, QUndoStack& stack) : list_(list), stack_(stack) {
    connect(&list, &ListView::Changing, this, &RowHistory::NoteRows);
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

void RowHistory::NoteRows() {
    if (restoring_) {
        return;
    }
    if (deeds_ == 0) {
        stack_.clear();
    } else if (!before_) {
        before_ = list_.Rows();
    }
}

void RowHistory::EndDeed(const QPersistentModelIndex& edited) {
    if (!before_) {
        return;
    }
    auto before = *std::exchange(before_, std::nullopt);
    if (before == list_.Rows()) {
        return;
    }
    const bool sameRows = edited.isValid() && before.size() == list_.Rows().size();
    stack_.push(new Change(*this, sameRows ? editedRow_ : -1, std::move(before)));
}

std::vector<ListRow> RowHistory::Exchange(std::vector<ListRow> rows) {
    std::vector<ListRow> shown = list_.Rows();
    const auto differing = std::ranges::mismatch(rows, shown).in1 - rows.begin();
    const QScopedValueRollback restoring(restoring_, true);
    list_.SetRows(std::move(rows));
    if (list_.Count() > 0) {
        list_.Select(std::min(static_cast<int>(differing), list_.Count() - 1));
    }
    list_.setFocus(Qt::OtherFocusReason);
    emit Restored();
    return shown;
}

} // namespace KAL_AUTO_Node
