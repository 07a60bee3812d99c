#include "history/NodeSave.h"

#include "platform/RuntimeError.h"
#include "store/Batch.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace KAL_AUTO_Node {

namespace {

// A save takes a fraction of a second; only one that lasts is worth telling.
constexpr std::chrono::milliseconds LongestWait(2000);
constexpr std::chrono::milliseconds BetweenLooks(50);

} // namespace

std::optional<Obstacle> NodeSave::Begin(const AutoNode& loaded, int version) {
    const bool guarded = history_.Prepare();
    const auto end = std::chrono::steady_clock::now() + LongestWait;
    while (true) {
        std::optional<Version> made;
        {
            std::optional<Transaction> all;
            std::vector<Version> versions;
            if (guarded) {
                all.emplace(dataBase_, place_.Number());
            }
            ReadAhead ahead(dataBase_);
            ReadContentAhead(ahead, place_.partition, place_.number);
            if (guarded) {
                History::ReadVersionsAhead(ahead, place_);
            }
            ahead.Fetch();
            if (guarded) {
                versions = history_.Versions(place_);
            }
            if (const auto found = std::ranges::find_if(versions, IsBeingMade); found != versions.end()) {
                made = *found;
            } else {
                NodeContent stored = ReadContent(dataBase_, place_.partition, place_.number);
                if (!stored.node) {
                    return Obstacle{Obstacle::Gone, {}, {}};
                }
                if (*stored.node != loaded) {
                    const bool known = !versions.empty() && versions.front().number > version;
                    return Obstacle{Obstacle::Changed, std::move(stored.node),
                                    known ? std::optional(versions.front()) : std::nullopt};
                }
                if (guarded) {
                    Batch batch(dataBase_);
                    version_ = history_.Add(batch, place_, "save", VersionState::Begun, stored);
                    try {
                        all->Commit(batch);
                    } catch (const RuntimeError&) {
                        // It may have failed when it was in place already.
                        all.reset();
                        static_cast<void>(Fail());
                        version_ = 0;
                        throw;
                    }
                }
                return std::nullopt;
            }
        }
        if (std::chrono::steady_clock::now() >= end) {
            return Obstacle{Obstacle::BeingSaved, {}, made};
        }
        std::this_thread::sleep_for(BetweenLooks);
    }
}

Creation NodeSave::Create(int typeID, int number, const std::string& date) {
    const auto& [partition, node] = place_;
    auto existing = Existing::Refuse;
    // Where nothing can be made nothing is left to be finished.
    const bool marked = Guarded() && HasCopyRule(NodeTypeOf(typeID));
    if (marked) {
        if (history_.HasBegun(partition, typeID, number)) {
            existing = Existing::Keep;
        } else {
            dataBase_.Execute(Command::Add_Creation, {partition.config, partition.number, NodeTypeOf(typeID),
                                                      number, version_, node, date});
        }
    }
    const Creation outcome =
        CreateNodeFromTemplate(dataBase_, partition, TemplateNumber, number, typeID, date, existing);
    if (marked && outcome == Creation::NoTemplate) {
        dataBase_.Execute(Command::Delete_Creation,
                          {partition.config, partition.number, NodeTypeOf(typeID), number});
    }
    return outcome;
}

void NodeSave::Renew() {
    if (!Guarded()) {
        return;
    }
    const auto& [partition, node] = place_;
    if (dataBase_.Execute(Command::Renew_AUTO_Version,
                          {TimeStamp(), partition.config, partition.number, node, version_}) == 0) {
        throw RuntimeError(ErrorNumber::Busy, "Somebody else has saved AUTO node " + std::to_string(node) +
                                                  " meanwhile; nothing of it was written");
    }
}

void NodeSave::Finish() {
    written_ = true;
    try {
        if (Guarded()) {
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

bool NodeSave::Fail() noexcept {
    if (written_) {
        return false;
    }
    bool half = false;
    try {
        if (Guarded()) {
            history_.End(place_, version_, VersionState::Failed);
            const auto left = history_.Unfinished(place_);
            half = left && left->number == version_;
        }
        dataBase_.Flush();
    } catch (const RuntimeError&) {
        // The failure that ended the save is the one to report. The mark says that the save did not finish.
    }
    return half;
}

} // namespace KAL_AUTO_Node
