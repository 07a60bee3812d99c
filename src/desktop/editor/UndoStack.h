#pragma once

#include "controls/ListRow.h"

#include <cstddef>
#include <deque>
#include <vector>

namespace KAL_AUTO_Node {

class RowHistory;

// What was done to the rows of the lists, deed by deed, to be taken back from the latest on and to be done
// again. The latest hundred are kept, as long as what they hold is no more than fits.
class UndoStack {
  public:
    static constexpr std::size_t MostDeeds = 100;
    static constexpr std::size_t MostBytes = 50'000'000;

    struct Deed {
        RowHistory* history; // outlives it
        int editedRow;       // which row was edited in place; -1 where none was
        std::vector<RowChange> changes;
    };

    // What was taken back before cannot be done again then. Deeds on one row that is edited are one, and none
    // where the row is what it was.
    void Push(Deed deed);

    [[nodiscard]] bool CanUndo() const { return done_ > 0; }

    [[nodiscard]] bool CanRedo() const { return done_ < deeds_.size(); }

    // Nothing where there is nothing. An error is reported; the deed is then as it was.
    void Undo();
    void Redo();
    void Clear();

  private:
    struct Kept : Deed {
        std::size_t bytes;
    };

    std::deque<Kept> deeds_;
    std::size_t done_ = 0; // of them; the others were taken back
};

} // namespace KAL_AUTO_Node
