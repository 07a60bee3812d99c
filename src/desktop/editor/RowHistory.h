#pragma once

#include "controls/ListView.h"
#include "editor/UndoStack.h"

#include <QObject>
#include <QPersistentModelIndex>

#include <vector>

namespace KAL_AUTO_Node {

// Notes what a person does to the rows of a list, deed by deed, on a stack from which it is taken back and
// done again. A change that is no deed of hers, as loading another node is, leaves nothing to take back.
class RowHistory : public QObject {
    Q_OBJECT

  public:
    // Both outlive the history.
    RowHistory(ListView& list, UndoStack& stack);

    // While one lives, what changes in the list is one deed; those within another belong to it. Deeds on one
    // row that is edited in place are taken back together.
    class Deed {
      public:
        // Whether such a row is being edited is asked at the end.
        Deed(RowHistory& history, const QPersistentModelIndex& edited);
        ~Deed();

        Deed(const Deed&) = delete;
        Deed& operator=(const Deed&) = delete;

      private:
        RowHistory& history_;
        const QPersistentModelIndex& edited_;
    };

    // From now on another row is edited in place, or the same one anew.
    void BeginRow() { ++editedRow_; }

    // Makes the rows what they were before some changes, the latest ones, with the first of those rows
    // selected and the focus on the list. The changes are then those that do it again.
    void Restore(std::vector<RowChange>& changes);

    // Whether rows that became others at their places are what they were.
    [[nodiscard]] bool IsAsBefore(const RowChange& change) const;

  signals:
    // Rows were put back, or taken away again.
    void Restored();

  private:
    void Note(RowChange& change);
    void EndDeed(const QPersistentModelIndex& edited);

    ListView& list_;
    UndoStack& stack_;
    int deeds_ = 0; // under way, one within the other
    int editedRow_ = 0;
    std::vector<RowChange> changes_; // of the deed
};

} // namespace KAL_AUTO_Node
