#pragma once

#include "history/NodeContent.h"
#include "history/Version.h"
#include "nodes/Templates.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class Batch;
class DataBase;
class ResultSet;
class Transaction;
enum class Command;

// Which changes: of one partition or of all, from a time up to another, which is no part of it; times as they
// are stored, empty for none.
struct LogScope {
    std::optional<Partition> partition;
    std::string since;
    std::string until;
};

// The changes of AUTO nodes that a store keeps, with each node as it was before them.
class History {
  public:
    // Of each node the latest versions are kept, and those younger than that many days, up to a number and,
    // where the node is large, to what so many bytes hold at its size.
    static constexpr int KeptVersions = 20;
    static constexpr int KeptDays = 90;
    static constexpr int MostVersions = 1000;
    static constexpr std::int64_t MostBytes = std::int64_t{8} << 20;

    // The data base outlives the history. The note, by which a person tells why, is kept with each change.
    explicit History(DataBase& dataBase, std::string note = {})
        : dataBase_(dataBase), note_(std::move(note)) {}

    // Whether the store keeps a history. A store of another program's has none before the first save.
    [[nodiscard]] bool Exists();
    // Makes the store keep one; false where it may not be changed so.
    [[nodiscard]] bool Prepare();
    // The same; raises PermissionDenied where it may not.
    void Require();

    // Newest first; none where there is no history.
    [[nodiscard]] std::vector<Version> Versions(const NodePlace& place);
    // The first of them. Like those that did not finish, it is found in the same time however many there are.
    [[nodiscard]] std::optional<Version> Newest(const NodePlace& place);
    // Those that are begun or failed, newest first. A server has none: a save is whole there or not at all.
    [[nodiscard]] std::vector<Version> Open(const NodePlace& place);
    // The node as it was before a change. Raises InvalidProcedureCall where there is no such version.
    [[nodiscard]] NodeContent Before(const NodePlace& place, std::int64_t version);

    // The newest change that never got to its end, is not being made now and has left the node another than
    // it was. Only reads.
    [[nodiscard]] std::optional<Version> Unfinished(const NodePlace& place);
    // Drops the changes that are surely over and have left the node as it was. Part of a transaction.
    void DropUntouched(const NodePlace& place);

    // Marks a change of this process's that is over as finished or failed; one that is finished has gone over
    // those before it. Where the mark cannot be written, the change is over for this history all the same,
    // and marked with the next chance.
    void End(const NodePlace& place, std::int64_t version, const char* state);

    // Marks the changes that ended here and could not be marked then; where they still cannot be, whatever is
    // done next tells of it.
    void CatchUp() noexcept;

    // Adds a version of that work and state for a change that follows, and drops the oldest of those that are
    // kept no longer, a few at a time. Part of a transaction, before whose end the batch is run.
    std::int64_t Add(Batch& batch, const NodePlace& place, const char* work, const char* state,
                     const NodeContent& before);
    // Where the newest is known; 0 where there is none.
    std::int64_t Add(Batch& batch, const NodePlace& place, std::int64_t newest, const char* work,
                     const char* state, const NodeContent& before);

    // Keeps nodes as they are, before a change that is whole with the transaction that this is part of; tells
    // in order what is kept. Raises Busy while one of them is being saved. No place stands there twice.
    void Keep(std::span<const NodePlace> places, const char* work, const TakeContent& take = {});

    // Raises Busy while one of them is being saved.
    void RequireIdle(std::span<const NodePlace> places);

    // Whether a save began to make that node from its template. Needs a store with a history.
    [[nodiscard]] bool HasBegun(Partition partition, const NodeKey& node);

    // The node as PutBack makes it; one that was not there goes. Raises Busy while the node is being saved.
    [[nodiscard]] NodeContent ToPutBack(const NodePlace& place, std::int64_t version);
    // Makes the store hold the node as it was before a change, in one step that is itself a version; the
    // change and those after it are undone. Returns what the step replaced.
    NodeContent PutBack(const NodePlace& place, std::int64_t version, const char* work);

    // The same for a save that did not finish; false where it is no longer so, or a later one has finished.
    [[nodiscard]] bool PutBackUnfinished(const NodePlace& place, std::int64_t version);

    // Takes back the mark of a change of this process's that has changed nothing.
    void Withdraw(const NodePlace& place, std::int64_t version);
    // Whether there is a version of that number, and of this process.
    [[nodiscard]] bool IsOwn(const NodePlace& place, std::int64_t version);
    // Whether the node is now what it was before a change; not where that cannot be read.
    [[nodiscard]] bool IsAsBefore(const NodePlace& place, std::int64_t version);

    // Whether a save began to make the node itself from its template, and nobody makes the rest any more.
    [[nodiscard]] bool IsHalfMade(const NodePlace& place);
    void MakeWhole(const NodePlace& place);

    // Hands over the changes of all nodes in a scope, newest first.
    void ReadLog(const LogScope& scope,
                 const std::function<void(const NodePlace& place, const Version& version)>& take);
    // Puts each node back as it was before each change, in memory; tells how many there are, and raises
    // StoreNotRecognized, naming it, for the first that cannot be.
    std::size_t Verify();

    // Drops what is kept no longer of all nodes; returns how many versions went.
    std::int64_t Prune();

  private:
    struct Ended {
        NodePlace place;
        std::int64_t version;
        const char* state;
    };

    // Who works here; on a server with the role, of which the workstation's user says nothing.
    [[nodiscard]] ProcessIdentity Self();
    // The versions that a command finds, as they are known here.
    [[nodiscard]] std::vector<Version> Find(Command command, const NodePlace& place);
    [[nodiscard]] std::vector<Version> Stored(Command command, const NodePlace& place);
    // Whether its table tells machines apart, as that of an older version does not.
    [[nodiscard]] bool TellsMachines();
    void RequireIdle(const NodePlace& place);
    NodeContent PutBackNow(const NodePlace& place, std::int64_t version, const char* work,
                           std::optional<Transaction>& all);
    void MarkEnded();
    // The oldest of those that are kept no longer, so many at most.
    static void Prune(Batch& batch, const NodePlace& place, std::int64_t newest, std::int64_t size,
                      int count);
    void Forget(const NodePlace& place, std::int64_t version);
    static void SetState(Batch& batch, const NodePlace& place, std::int64_t version, const char* state);
    // Makes what the change began to make from templates.
    void FinishCreations(const NodePlace& place, std::int64_t version);

    // Of the row that a query has reached.
    [[nodiscard]] static Version VersionIn(const ResultSet& row);

    DataBase& dataBase_;
    std::string note_;
    std::optional<bool> tellsMachines_;
    std::vector<Ended> ended_; // and not marked so yet
};

} // namespace KAL_AUTO_Node
