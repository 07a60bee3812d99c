#pragma once

#include "history/History.h"
#include "nodes/RequiredNodes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace KAL_AUTO_Node {

// What stands in the way of a save.
struct Obstacle {
    enum Kind {
        Gone,       // there is no such node any more
        BeingSaved, // somebody is saving it, for longer than one waits
        Changed,    // it is no longer what was seen
    } kind;

    SeenNode stored;           // where it changed
    std::optional<Version> by; // who is at it, or changed it, where that is known
};

class NodeSave;

// Those for whom a node is saved: they are asked, and told how far it is.
class SaveAudience {
  public:
    SaveAudience() = default;
    virtual ~SaveAudience() = default;

    SaveAudience(const SaveAudience&) = delete;
    SaveAudience& operator=(const SaveAudience&) = delete;

    // Whether the save goes over what stands in its way; what is no change cannot be gone over.
    [[nodiscard]] virtual bool GoesOver(const SeenNode& seen, const Obstacle& obstacle) = 0;
    // Nothing stands in the way: missing nodes can be made, for as long as that takes.
    virtual void MakeMissing(NodeSave& save) = 0;
    // The node itself is written now.
    virtual void Writing() = 0;
};

// Those who are asked about nodes that are referred to and are not there.
struct CreationAudience {
    enum class Answer { Create, CreateAll, Leave, Stop };

    std::function<Answer(const RequiredNode&)> ask;
    std::function<void(const RequiredNode&, Creation)> tell;
    // While the error of looking a node up is being handled; the node counts as missing.
    std::function<void()> lookUpFailed;
};

// One save of a node. In a file its statements stand each for itself, and what an error or a killed process
// leaves half-way can be put back by whoever opens the node next. On a server it is one transaction. Both
// look whether the node is still what was seen, where nobody else can write before the first statement.
class NodeSave {
  public:
    // The history and its data base outlive the save.
    NodeSave(DataBase& dataBase, History& history, const NodePlace& place)
        : dataBase_(dataBase), history_(history), place_(place) {}

    // Saves the node in the place of what was seen, which becomes what the audience has gone over and, in the
    // end, what is stored. False where the audience does not go over it: nothing of the node is written then.
    [[nodiscard]] bool Run(SeenNode& seen, const AutoNode& node, const std::string& date,
                           SaveAudience& audience);

    // What Run has left where it ended with an error.
    enum class Left {
        Nothing, // the node is as it was
        Part,    // of a node that can be put back
        Unknown, // perhaps all of it, perhaps a part
    };

    [[nodiscard]] Left WhatIsLeft() const { return left_; }

    // Of the history; 0 where there is none.
    [[nodiscard]] std::int64_t VersionNumber() const { return version_; }

    // Whether the node can be put back: not in a store that may not keep a history.
    [[nodiscard]] bool Guarded() const { return guarded_; }

    // For the audience: looks nodes up, in order, and makes from their templates those that are wanted.
    void CreateMissing(std::span<const RequiredNode> nodes, const std::string& date,
                       const CreationAudience& audience);

  private:
    class Ending;

    [[nodiscard]] bool RunInFile(SeenNode& seen, const AutoNode& node, const std::string& date,
                                 SaveAudience& audience);
    [[nodiscard]] bool RunOnServer(SeenNode& seen, const AutoNode& node, const std::string& date,
                                   SaveAudience& audience);
    // What stands in the way by now, but for saves under way.
    [[nodiscard]] std::optional<Obstacle> Look(const SeenNode& seen);
    // Marks the node as being saved, unless something stands in the way. A save by somebody else, and a lock,
    // are waited for briefly.
    [[nodiscard]] std::optional<Obstacle> Begin(const SeenNode& seen);
    [[nodiscard]] std::optional<Obstacle> Mark(const SeenNode& seen);
    // The last look: whether the mark still stands, and nobody has changed the node past it.
    [[nodiscard]] std::optional<Obstacle> Renew(const SeenNode& seen);
    void RequireWritten(std::span<const std::int64_t> written, const SeenNode& seen, const AutoNode& node);
    void Finish();
    void Fail() noexcept;
    // One that was begun before and never came to its end, by whatever befell, is made whole.
    Creation Create(const RequiredNode& required, const std::string& date);

    DataBase& dataBase_;
    History& history_;
    NodePlace place_;
    NodeContent before_;       // as it is stored, where nothing stands in the way
    std::int64_t newest_ = 0;  // of the versions that are there
    std::int64_t version_ = 0; // none yet
    bool guarded_ = false;
    bool marked_ = false;  // and not ended
    bool writing_ = false; // the node itself
    Left left_ = Left::Nothing;
};

} // namespace KAL_AUTO_Node
