#include "history/NodeSave.h"

#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "nodes/NodeTypes.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr std::chrono::milliseconds BetweenLooks(50);

// What could be read of a history that some other program has written says nothing; saving goes on without.
bool IsNoHistory(const RuntimeError& error) {
    return error.Number() == ErrorNumber::Overflow || error.Number() == ErrorNumber::InvalidUseOfNull ||
           error.Number() == ErrorNumber::ColumnNotFound;
}

// A register that could not be read is not known to have changed.
bool IsSame(const NodeContent& seen, const NodeContent& stored) {
    return seen.node == stored.node && (!seen.entryRead || !stored.entryRead || seen.entry == stored.entry);
}

template <class Step>
bool Clear(SeenNode& seen, SaveAudience& audience, Step step) {
    while (auto obstacle = step()) {
        if (!audience.GoesOver(seen, *obstacle)) {
            return false;
        }
        // As far as the audience has seen by now.
        seen = std::move(obstacle->stored);
    }
    return true;
}

// Fetches from a server whether nodes exist: of all at once and, where nodes are created, which makes that
// old, of the next few.
class Existence {
  public:
    Existence(DataBase& dataBase, Partition partition, std::span<const RequiredNode> nodes)
        : dataBase_(dataBase), ahead_(dataBase), partition_(partition), nodes_(nodes), count_(nodes.size()) {}

    // Before it is asked for; in the order of the nodes.
    void LookUp(const RequiredNode& node) {
        if (known_-- > 0) {
            return;
        }
        const auto rest = nodes_.subspan(static_cast<std::size_t>(&node - nodes_.data()));
        const auto next = rest.first(std::min(count_, rest.size()));
        ahead_.Fetch([&] {
            for (const RequiredNode& one : next) {
                static_cast<void>(IsNodeExisted(dataBase_, partition_, one.key));
            }
        });
        known_ = std::ssize(next) - 1;
    }

    void Forget() {
        known_ = 0;
        count_ = Few;
    }

  private:
    static constexpr std::size_t Few = 50;

    DataBase& dataBase_;
    ReadAhead ahead_;
    Partition partition_;
    std::span<const RequiredNode> nodes_;
    std::size_t count_;
    std::ptrdiff_t known_ = 0; // of how many more it is known
};

} // namespace

// A save that is left without its end has failed.
class NodeSave::Ending {
  public:
    explicit Ending(NodeSave& save) : save_(save) {}

    ~Ending() {
        if (save_.marked_ || save_.writing_) {
            save_.Fail();
        }
    }

    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;

  private:
    NodeSave& save_;
};

bool NodeSave::Run(SeenNode& seen, const AutoNode& node, const std::string& date, SaveAudience& audience) {
    const Ending ending(*this);
    const bool saved = dataBase_.IsRemote() ? RunOnServer(seen, node, date, audience)
                                            : RunInFile(seen, node, date, audience);
    writing_ = false;
    if (saved) {
        NodeContent content = std::move(before_);
        content.node = node;
        if (content.entry) {
            content.entry->label = node.label;
            content.entry->dateModified = date;
        }
        seen = {std::move(content), version_};
    }
    return saved;
}

bool NodeSave::RunInFile(SeenNode& seen, const AutoNode& node, const std::string& date,
                         SaveAudience& audience) {
    if (!Clear(seen, audience, [&] { return Begin(seen); })) {
        return false;
    }
    audience.MakeMissing(*this);
    audience.Writing();
    if (!Clear(seen, audience, [&] { return Renew(seen); })) {
        return false;
    }
    writing_ = true;
    left_ = Left::Unknown;
    Batch batch(dataBase_);
    AddWrites(batch, place_, node, date);
    RequireWritten(batch.Run(), seen, node);
    Finish();
    return true;
}

bool NodeSave::RunOnServer(SeenNode& seen, const AutoNode& node, const std::string& date,
                           SaveAudience& audience) {
    guarded_ = history_.Prepare();
    if (!Clear(seen, audience, [&] { return Look(seen); })) {
        return false;
    }
    audience.MakeMissing(*this);
    audience.Writing();
    // The questions may have taken any time.
    std::optional<Transaction> all;
    const auto lookAgain = [&] {
        all.emplace(dataBase_, place_.LockKey());
        auto obstacle = Look(seen);
        if (obstacle) {
            all.reset();
        }
        return obstacle;
    };
    if (!Clear(seen, audience, lookAgain)) {
        return false;
    }
    Batch batch(dataBase_);
    AddWrites(batch, place_, node, date);
    if (guarded_) {
        version_ = history_.Add(batch, place_, newest_, "save", VersionState::Finished, before_);
        // Older programs leave marks here, too.
        batch.Add(Command::Leave_AUTO_Versions, {place_, version_});
    }
    try {
        all->Commit(batch);
    } catch (const RuntimeError& error) {
        left_ = error.Number() == ErrorNumber::OutcomeUnknown ? Left::Unknown : Left::Nothing;
        throw;
    }
    left_ = Left::Unknown;
    RequireWritten(batch.Run(), seen, node);
    return true;
}

std::optional<Obstacle> NodeSave::Look(const SeenNode& seen) {
    ReadAhead ahead(dataBase_);
    ahead.Fetch([&] {
        static_cast<void>(ReadContent(dataBase_, place_));
        if (guarded_) {
            static_cast<void>(history_.Newest(place_));
        }
    });
    std::optional<Version> newest;
    if (guarded_) {
        try {
            newest = history_.Newest(place_);
            newest_ = newest ? newest->number : 0;
            guarded_ = newest_ < INT64_MAX;
        } catch (const RuntimeError& error) {
            if (!IsNoHistory(error) && history_.Exists()) {
                throw;
            }
            guarded_ = false; // its tables are gone, or another program's doing cannot be read
        }
    }
    before_ = ReadContent(dataBase_, place_);
    if (!before_.node) {
        return Obstacle{Obstacle::Gone, {}, {}};
    }
    if (IsSame(seen.content, before_)) {
        return std::nullopt;
    }
    const bool known = newest && newest->number > seen.version;
    const std::int64_t version = newest ? newest->number : seen.version;
    return Obstacle{Obstacle::Changed, {before_, version}, known ? newest : std::nullopt};
}

std::optional<Obstacle> NodeSave::Begin(const SeenNode& seen) {
    const auto end = std::chrono::steady_clock::now() + dataBase_.HowLong().save;
    const auto isOver = [&] { return std::chrono::steady_clock::now() >= end; };
    while (true) {
        try {
            auto obstacle = Mark(seen);
            if (!obstacle || obstacle->kind != Obstacle::BeingSaved || isOver()) {
                return obstacle;
            }
        } catch (const RuntimeError& error) {
            if (error.Number() != ErrorNumber::StoreLocked || isOver()) {
                throw;
            }
        }
        std::this_thread::sleep_for(BetweenLooks);
    }
}

std::optional<Obstacle> NodeSave::Mark(const SeenNode& seen) {
    guarded_ = history_.Prepare();
    if (!guarded_) {
        return Look(seen);
    }
    Transaction all(dataBase_, place_.LockKey());
    auto obstacle = Look(seen);
    if (!guarded_) {
        return obstacle;
    }
    auto open = history_.Open(place_);
    if (const auto made = std::ranges::find_if(open, IsBeingMade); made != open.end()) {
        return Obstacle{Obstacle::BeingSaved, {}, std::move(*made)};
    }
    if (obstacle) {
        return obstacle;
    }
    history_.DropUntouched(place_);
    Batch batch(dataBase_);
    version_ = history_.Add(batch, place_, "save", VersionState::Begun, before_);
    marked_ = true; // where that fails, it may have failed when it was in place already
    all.Commit(batch);
    return std::nullopt;
}

std::optional<Obstacle> NodeSave::Renew(const SeenNode& seen) {
    if (!marked_) {
        return guarded_ ? Begin(seen) : Look(seen);
    }
    {
        Transaction all(dataBase_, place_.LockKey());
        const bool stands =
            dataBase_.Execute(Command::Renew_AUTO_Version, {TimeStamp(), place_, version_}) == 1;
        if (stands && IsSame(seen.content, ReadContent(dataBase_, place_))) {
            all.Commit();
            return std::nullopt;
        }
    }
    // It was taken for dead, or a program without marks has changed the node.
    history_.Withdraw(place_, version_);
    marked_ = false;
    return Begin(seen);
}

void NodeSave::RequireWritten(std::span<const std::int64_t> written, const SeenNode& seen,
                              const AutoNode& node) {
    const auto rows = RowsWritten(node, seen.content.entry.has_value());
    const auto missing =
        std::ranges::count_if(rows, [&](std::size_t at) { return at >= written.size() || written[at] == 0; });
    // A view of another program's tells no number.
    if (missing > 0 && ReadAutoNode(dataBase_, place_) != node) {
        throw RuntimeError(ErrorNumber::StoreFailure,
                           "Of " + std::to_string(rows.size()) + " rows of the node " +
                               std::to_string(missing) +
                               " are not stored, though no statement failed; a trigger of the store may have "
                               "left them out");
    }
}

void NodeSave::Finish() {
    const bool marked = std::exchange(marked_, false);
    try {
        if (marked) {
            history_.End(place_, version_, VersionState::Finished);
        }
        dataBase_.Flush();
    } catch (const RuntimeError& error) {
        // What was written is in a file that nobody finds any more.
        const bool lost = error.Number() == ErrorNumber::StoreNotFound;
        throw RuntimeError(error.Number(),
                           (lost ? "The store that is there now has not got what was saved here: "
                                 : "All of the node is written, but not marked so: ") +
                               std::string(error.what()),
                           error.Source());
    }
}

void NodeSave::Fail() noexcept {
    try {
        if (std::exchange(marked_, false)) {
            history_.End(place_, version_, VersionState::Failed);
            if (!writing_ || history_.IsAsBefore(place_, version_)) {
                left_ = Left::Nothing;
                history_.Withdraw(place_, version_);
            } else {
                left_ = Left::Part;
            }
        }
        dataBase_.Flush();
    } catch (const RuntimeError&) {
        // The failure that ended the save is the one to report. The mark says that the save did not finish.
    }
}

void NodeSave::CreateMissing(std::span<const RequiredNode> nodes, const std::string& date,
                             const CreationAudience& audience) {
    using Answer = CreationAudience::Answer;
    Existence existence(dataBase_, place_.partition, nodes);
    auto answer = Answer::Leave;
    for (const RequiredNode& node : nodes) {
        existence.LookUp(node);
        try {
            if (IsNodeExisted(dataBase_, place_.partition, node.key)) {
                continue;
            }
        } catch (const RuntimeError&) {
            audience.lookUpFailed();
        }
        if (answer != Answer::CreateAll) {
            answer = audience.ask(node);
        }
        if (answer == Answer::Stop) {
            return;
        }
        if (answer != Answer::Leave) {
            const Creation outcome = Create(node, date);
            existence.Forget();
            audience.tell(node, outcome);
        }
    }
}

Creation NodeSave::Create(const RequiredNode& required, const std::string& date) {
    const Partition partition = place_.partition;
    const NodeKey node = required.key.Itself();
    auto existing = Existing::Refuse;
    if (marked_) {
        if (history_.HasBegun(partition, node)) {
            existing = Existing::Keep;
        } else {
            dataBase_.Execute(Command::Add_Creation, {partition, node, version_, place_.number, date});
        }
    }
    const auto leaveUnmarked = [&] {
        if (marked_) {
            dataBase_.Execute(Command::Delete_Creation, {partition, node});
        }
    };
    try {
        const Creation outcome =
            CreateNodeFromTemplate(dataBase_, partition, TemplateNumber, node, date, existing);
        if (outcome == Creation::NoRule || outcome == Creation::NoTemplate) {
            leaveUnmarked();
        }
        return outcome;
    } catch (const AlreadyThere&) {
        leaveUnmarked();
        throw;
    }
}

} // namespace KAL_AUTO_Node
