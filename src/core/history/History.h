#pragma once

#include "history/NodeContent.h"
#include "history/Version.h"
#include "nodes/Templates.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class Batch;
class DataBase;
class ReadAhead;

// The changes of AUTO nodes that a store keeps, with each node as it was before them.
class History {
  public:
    // Of each node the latest versions are kept, and everything younger than that many days.
    static constexpr int KeptVersions = 20;
    static constexpr int KeptDays = 90;

    // The data base outlives the history.
    explicit History(DataBase& dataBase) : dataBase_(dataBase) {}

    // Whether the store keeps a history. A store of another program's has none before the first save.
    [[nodiscard]] bool Exists();
    // Makes the store keep one; false where it may not be changed so.
    [[nodiscard]] bool Prepare();

    static void ReadVersionsAhead(ReadAhead& ahead, const NodePlace& place);
    // Newest first; none where there is no history.
    [[nodiscard]] std::vector<Version> Versions(const NodePlace& place);
    // The node as it was before a change. Raises InvalidProcedureCall where there is no such version.
    [[nodiscard]] NodeContent Before(const NodePlace& place, int version);

    // The newest change that never got to its end, is not being made now and has left the node another than
    // it was. One that has not is dropped once it is surely over, unless the store is only to be read.
    [[nodiscard]] std::optional<Version> Unfinished(const NodePlace& place, bool onlyRead = false);

    // Marks a change of this process's that is over as finished or failed; one that is finished has gone over
    // those before it. Where the mark cannot be written, the change is over for this history all the same,
    // and marked with the next chance.
    void End(const NodePlace& place, int version, const char* state);

    // Adds a version of that work and state for a change that follows, and drops those that are kept no
    // longer. Part of a transaction, before whose end the batch is run.
    int Add(Batch& batch, const NodePlace& place, const char* work, const char* state,
            const NodeContent& before);

    // Keeps nodes as they are, before a change that is whole with the transaction that this is part of; tells
    // in order what is kept. Raises Busy while one of them is being saved. No place stands there twice.
    void Keep(std::span<const NodePlace> places, const char* work, const TakeContent& take = {});

    // Raises Busy while one of them is being saved.
    void RequireIdle(std::span<const NodePlace> places);

    // Whether a save began to make that node from its template. Needs a store with a history.
    [[nodiscard]] bool HasBegun(Partition partition, int typeID, int number);

    // The node as PutBack makes it. Raises Busy while the node is being saved, and InvalidProcedureCall where
    // there was none.
    [[nodiscard]] NodeContent ToPutBack(const NodePlace& place, int version);
    // Makes the store hold the node as it was before a change, in one step that is itself a version; the
    // change and those after it are undone. Returns what the step replaced.
    NodeContent PutBack(const NodePlace& place, int version, const char* work);

    // Drops what is kept no longer of all nodes; returns how many versions went.
    std::int64_t Prune();

  private:
    struct Ended {
        NodePlace place;
        int version;
        const char* state;
    };

    // Who works here; on a server with the role, of which the workstation's user says nothing.
    [[nodiscard]] ProcessIdentity Self();
    [[nodiscard]] std::vector<Version> Stored(const NodePlace& place);
    static void RequireIdle(const NodePlace& place, const std::vector<Version>& versions);
    // Behind those versions.
    int Add(Batch& batch, const NodePlace& place, const std::vector<Version>& versions, const char* work,
            const char* state, const NodeContent& before);
    // Whether the node is now what it was before a change; not where that cannot be read.
    [[nodiscard]] bool IsAsBefore(const NodePlace& place, int version);
    void MarkEnded();
    void TryToMarkEnded() noexcept;
    void Forget(const NodePlace& place, int version);
    void Drop(const NodePlace& place, int version);
    static void SetState(Batch& batch, const NodePlace& place, int version, const char* state);
    // Makes what the change began to make from templates.
    void FinishCreations(const NodePlace& place, int version);

    DataBase& dataBase_;
    bool exists_ = false;      // known to
    std::vector<Ended> ended_; // and not marked so yet
};

} // namespace KAL_AUTO_Node
