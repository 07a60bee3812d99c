#pragma once

#include "history/History.h"

#include <optional>
#include <string>

namespace KAL_AUTO_Node {

// What stands in the way of a save, or nothing.
struct Obstacle {
    enum Kind {
        Gone,       // there is no such node any more
        BeingSaved, // somebody is saving it, for longer than one waits
        Changed,    // it is no longer what was loaded
    } kind;

    std::optional<AutoNode> stored; // where it changed
    std::optional<Version> by;      // who is at it, or changed it, where that is known
};

// One save of a node: what is written between Begin and Finish can be put back when it does not get to its
// end, by whoever opens the node next. The described statements in between stay each by itself.
class NodeSave {
  public:
    // The history and its data base outlive the save.
    NodeSave(DataBase& dataBase, History& history, const NodePlace& place)
        : dataBase_(dataBase), history_(history), place_(place) {}

    // Keeps the node as it is stored, marked as being saved, unless something stands in the way; nothing is
    // written then. A save by somebody else is waited for briefly. Loaded is the node as it was when it was
    // read, at that version (0 where there was none).
    [[nodiscard]] std::optional<Obstacle> Begin(const AutoNode& loaded, int version);

    // Whether the node can be put back: not in a store that may not keep a history.
    [[nodiscard]] bool Guarded() const { return version_ > 0; }

    // Of the history; 0 where it is not guarded.
    [[nodiscard]] int VersionNumber() const { return version_; }

    // Makes a node that this one refers to from the template. One that was begun before and never came to its
    // end, by whatever befell, is made whole.
    Creation Create(int typeID, int number, const std::string& date);

    // After a pause of any length: makes sure that nobody has taken the save for dead. Raises Busy otherwise.
    void Renew();

    // Marks the save as whole and makes it last. Where that fails, the node is written all the same, which
    // the error says, unless the file was moved, replaced or deleted meanwhile: StoreNotFound says so.
    void Finish();

    // After an error: makes what was written last, and tells whether the node is now another than before and
    // can be put back.
    [[nodiscard]] bool Fail() noexcept;

  private:
    DataBase& dataBase_;
    History& history_;
    NodePlace place_;
    int version_ = 0;      // none yet
    bool written_ = false; // all of it
};

} // namespace KAL_AUTO_Node
