#pragma once

#include "controls/ListView.h"
#include "feedback/ErrorReport.h"

#include <QObject>
#include <QUndoStack>

#include <optional>
#include <vector>

namespace KAL_AUTO_Node {

// Notes what a person does to the rows of a list, deed by deed, on a stack from which it is taken back and
// done again. A change that is no deed of hers, as loading another node is, leaves nothing to take back.
class RowHistory : public QObject {
    Q_OBJECT

  public:
    // Both outlive the history.
    RowHistory(ListView& list, QUndoStack& stack);

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

  signals:
    // Rows were put back, or taken away again.
    void Restored();

  private:
    class Change;

    void NoteRows();
    void EndDeed(const QPersistentModelIndex& edited);
    // Shows other rows, with the first that differs selected and the focus on the list; returns those that
    // were there.
    std::vector<ListRow> Exchange(std::vector<ListRow> rows);

    ListView& list_;
    QUndoStack& stack_;
    int deeds_ = 0; // under way, one within the other
    bool restoring_ = false;
    int editedRow_ = 0;
    std::optional<std::vector<ListRow>> before_; // the deed, once it has changed something
};

// Take back the latest deed, and do it again. An error is reported; the deed is then as it was.
inline void Undo(QUndoStack& stack) {
    Reporting("Undo", [&] { stack.undo(); });
}

inline void Redo(QUndoStack& stack) {
    Reporting("Redo", [&] { stack.redo(); });
}

} // namespace KAL_AUTO_Node
