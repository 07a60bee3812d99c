#include "history/History.h"

#include "nodes/NodeTypes.h"
#include "platform/FoldCase.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "store/Batch.h"
#include "store/Scripts.h"

#include <climits>

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* VersionTable = "Node_AUTO_Version";
constexpr const char* CreationTable = "Node_Creation";

// The note stands behind the work, in one column: so older programs keep it and show it.
constexpr std::string_view BeforeNote = ": ";

// A change of this process's. One that ended before it was stored has left its number to others.
auto FindOwn(std::vector<Version>& versions, std::int64_t number, const ProcessIdentity& self) {
    return std::ranges::find_if(versions, [&](const Version& version) {
        return version.number == number && version.author.process == self.process &&
               version.author.start == self.start && version.author.host == self.host;
    });
}

} // namespace

bool History::Exists() { return dataBase_.HasTable(VersionTable) && dataBase_.HasTable(CreationTable); }

bool History::TellsMachines() {
    if (!tellsMachines_) {
        // A store that tells no version has got its tables from any of the programs.
        const int version = dataBase_.Version().value_or(0);
        tellsMachines_ = version > 1 ||
                         (version == 0 &&
                          std::ranges::any_of(dataBase_.Columns(VersionTable), [](const std::string& column) {
                              return SameInAscii(column, "Machine");
                          }));
    }
    return *tellsMachines_;
}

bool History::Prepare() {
    CatchUp();
    try {
        if (!Exists()) {
            dataBase_.MakeTables(HistoryScript);
            tellsMachines_.reset();
        }
        if (Exists() && !TellsMachines() && dataBase_.Version() == 0) {
            dataBase_.MakeTables(Upgrade2Script);
            tellsMachines_.reset();
        }
    } catch (const RuntimeError& error) {
        // Another workstation may have made them meanwhile; where they may not be made, saving goes on
        // without.
        if (!Exists() && error.Number() != ErrorNumber::PermissionDenied) {
            throw;
        }
    }
    return Exists();
}

void History::Require() {
    if (!Prepare()) {
        throw RuntimeError(ErrorNumber::PermissionDenied,
                           "This store can keep no history, so that the change could not be taken back");
    }
}

ProcessIdentity History::Self() {
    ProcessIdentity self = ThisProcess();
    // The server's rules for who may change what of the history go by this end of the name.
    if (const std::string role = dataBase_.Role(); !role.empty() && role != self.user) {
        self.user += " as " + role;
    }
    return self;
}

Version History::VersionIn(const ResultSet& row) {
    const auto text = [&](const char* column) { return std::string(row.Text(column)); };
    Version version{row.Number64("VersionNo"),
                    text("Work"),
                    text("State"),
                    text("BegunAt"),
                    {text("UserName"),
                     text("HostName"),
                     text("Program"),
                     row.Number64("ProcessID"),
                     text("ProcessStart"),
                     {}},
                    {}};
    if (const auto end = version.work.find(BeforeNote); end != std::string::npos) {
        version.note = version.work.substr(end + BeforeNote.size());
        version.work.resize(end);
    }
    return version;
}

std::vector<Version> History::Stored(Command command, const NodePlace& place) {
    std::vector<Version> versions;
    if (!Exists()) {
        return versions;
    }
    const auto query = [&]() -> std::optional<ResultSet> {
        try {
            return dataBase_.Query(command, {place});
        } catch (const RuntimeError&) {
            if (!Exists()) {
                return std::nullopt; // any more
            }
            throw;
        }
    };
    auto rows = query();
    for (; rows && !rows->AtEnd(); rows->MoveNext()) {
        versions.push_back(VersionIn(*rows));
    }
    rows.reset();
    for (Version& version : versions) {
        if (version.state == VersionState::Begun && !dataBase_.IsRemote() && TellsMachines()) {
            const ResultSet row = dataBase_.Query(Command::Get_AUTO_Version_Machine, {place, version.number});
            version.author.machine = row.AtEnd() ? std::string() : std::string(row.Text("Machine"));
        }
    }
    return versions;
}

std::vector<Version> History::Find(Command command, const NodePlace& place) {
    auto versions = Stored(command, place);
    for (const auto& [ended, number, state] : ended_) {
        const auto own = ended == place ? FindOwn(versions, number, Self()) : versions.end();
        if (own == versions.end()) {
            continue;
        }
        const bool finished = state == std::string_view(VersionState::Finished);
        for (auto version = own; version != versions.end(); ++version) {
            if (IsUnfinished(*version) && (version == own || finished)) {
                version->state = version == own ? state : VersionState::Left;
            }
        }
    }
    return versions;
}

std::vector<Version> History::Versions(const NodePlace& place) {
    return Find(Command::Get_AUTO_Versions, place);
}

std::optional<Version> History::Newest(const NodePlace& place) {
    auto versions = Find(Command::Get_Newest_AUTO_Version, place);
    return versions.empty() ? std::nullopt : std::optional(std::move(versions.front()));
}

std::vector<Version> History::Open(const NodePlace& place) {
    if (dataBase_.IsRemote()) {
        return {};
    }
    auto versions = Find(Command::Get_Unfinished_AUTO_Versions, place);
    std::erase_if(versions, [](const Version& version) { return !IsUnfinished(version); });
    return versions;
}

NodeContent History::Before(const NodePlace& place, std::int64_t version) {
    const std::string missing = place.Text() + " has no version " + std::to_string(version);
    if (!Exists()) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, missing);
    }
    const ResultSet row = dataBase_.Query(Command::Get_AUTO_Version_Content, {place, version});
    if (row.AtEnd()) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, missing);
    }
    try {
        return ContentOf(std::string(row.Text("Content")));
    } catch (const RuntimeError& error) {
        throw RuntimeError(error.Number(),
                           place.Text() + ", version " + std::to_string(version) + ": " + error.what());
    }
}

bool History::IsAsBefore(const NodePlace& place, std::int64_t version) {
    try {
        return ReadContent(dataBase_, place) == Before(place, version);
    } catch (const RuntimeError& error) {
        // Nobody can tell, and a change that never got to its end must not go unseen.
        if (error.Number() == ErrorNumber::StoreNotRecognized) {
            return false;
        }
        throw;
    }
}

std::optional<Version> History::Unfinished(const NodePlace& place) {
    const auto versions = Open(place);
    if (std::ranges::any_of(versions, IsBeingMade)) {
        return std::nullopt;
    }
    const auto half = std::ranges::find_if(
        versions, [&](const Version& version) { return !IsAsBefore(place, version.number); });
    return half == versions.end() ? std::nullopt : std::optional(*half);
}

void History::DropUntouched(const NodePlace& place) {
    for (const Version& version : Open(place)) {
        if (IsSurelyOver(version) && IsAsBefore(place, version.number)) {
            dataBase_.Execute(Command::Delete_AUTO_Version, {place, version.number});
            Forget(place, version.number);
        }
    }
}

void History::End(const NodePlace& place, std::int64_t version, const char* state) {
    ended_.push_back({place, version, state});
    MarkEnded();
}

void History::MarkEnded() {
    while (!ended_.empty()) {
        const auto& [place, version, state] = ended_.front();
        Transaction all(dataBase_, place.LockKey());
        Batch batch(dataBase_);
        if (auto versions = Stored(Command::Get_Unfinished_AUTO_Versions, place);
            FindOwn(versions, version, Self()) != versions.end()) {
            SetState(batch, place, version, state);
            if (state == std::string_view(VersionState::Finished)) {
                batch.Add(Command::Leave_AUTO_Versions, {place, version});
                batch.Add(Command::Delete_Finished_Creations, {place});
            }
        }
        all.Commit(batch);
        ended_.erase(ended_.begin());
    }
}

void History::CatchUp() noexcept {
    try {
        MarkEnded();
    } catch (const RuntimeError&) {
        // They wait for the next chance.
    }
}

void History::Forget(const NodePlace& place, std::int64_t version) {
    std::erase_if(ended_,
                  [&](const Ended& ended) { return ended.place == place && ended.version == version; });
}

std::int64_t History::Add(Batch& batch, const NodePlace& place, const char* work, const char* state,
                          const NodeContent& before) {
    const auto newest = Newest(place);
    return Add(batch, place, newest ? newest->number : 0, work, state, before);
}

std::int64_t History::Add(Batch& batch, const NodePlace& place, std::int64_t newest, const char* work,
                          const char* state, const NodeContent& before) {
    const std::int64_t number = newest + 1;
    Forget(place, number); // it was that of a change that never was
    const ProcessIdentity author = Self();
    const std::string text = TextOf(place, before);
    const std::string told = note_.empty() ? work : std::string(work) + std::string(BeforeNote) + note_;
    batch.Add(Command::Add_AUTO_Version, {place, number, told, state, TimeStamp(), author.user, author.host,
                                          author.program, author.process, author.start, text});
    if (state == std::string_view(VersionState::Begun) && TellsMachines()) {
        batch.Add(Command::Set_AUTO_Version_Machine, {author.machine, place, number});
    }
    if (number > KeptVersions) {
        // One comes, a few go: those that an older program has kept are gone after some saves.
        Prune(batch, place, number, static_cast<std::int64_t>(text.size()), KeptVersions);
    }
    return number;
}

void History::Prune(Batch& batch, const NodePlace& place, std::int64_t newest, std::int64_t size, int count) {
    const std::int64_t most =
        std::clamp<std::int64_t>(MostBytes / std::max<std::int64_t>(size, 1), KeptVersions, MostVersions);
    batch.Add(Command::Prune_AUTO_Versions,
              {place, newest - KeptVersions, count, TimeStamp(KeptDays), newest - most});
}

bool History::HasBegun(Partition partition, const NodeKey& node) {
    return !dataBase_.Query(Command::Get_Creation, {partition, node.Itself()}).AtEnd();
}

void History::SetState(Batch& batch, const NodePlace& place, std::int64_t version, const char* state) {
    batch.Add(Command::Set_AUTO_Version_State, {state, place, version});
}

void History::RequireIdle(const NodePlace& place) {
    const auto versions = Open(place);
    if (const auto made = std::ranges::find_if(versions, IsBeingMade); made != versions.end()) {
        throw RuntimeError(ErrorNumber::Busy, place.Text() + " is being saved by " +
                                                  Visible(AuthorText(*made)) + " since " +
                                                  LocalTime(made->begunAt));
    }
}

void History::RequireIdle(std::span<const NodePlace> places) {
    for (const NodePlace& place : places) {
        RequireIdle(place);
    }
}

void History::Keep(std::span<const NodePlace> places, const char* work, const TakeContent& take) {
    while (!places.empty()) {
        const auto together = TakeTogether(places);
        ReadAhead ahead(dataBase_);
        ahead.Fetch([&] {
            for (const NodePlace& place : together) {
                static_cast<void>(Newest(place));
                static_cast<void>(ReadContent(dataBase_, place));
            }
        });
        Batch batch(dataBase_);
        for (const NodePlace& place : together) {
            RequireIdle(place);
            NodeContent before = ReadContent(dataBase_, place);
            const auto version = Add(batch, place, work, VersionState::Finished, before);
            if (version > 1) {
                batch.Add(Command::Leave_AUTO_Versions, {place, version});
            }
            if (take) {
                take(place, std::move(before));
            }
        }
        batch.Run();
    }
}

void History::Withdraw(const NodePlace& place, std::int64_t version) {
    Transaction all(dataBase_, place.LockKey());
    auto versions = Stored(Command::Get_Unfinished_AUTO_Versions, place);
    if (FindOwn(versions, version, Self()) != versions.end()) {
        dataBase_.Execute(Command::Delete_AUTO_Version, {place, version});
    }
    all.Commit();
    Forget(place, version);
}

bool History::IsOwn(const NodePlace& place, std::int64_t version) {
    auto versions = Stored(Command::Get_AUTO_Versions, place);
    return FindOwn(versions, version, Self()) != versions.end();
}

std::int64_t History::Prune() {
    struct Kept {
        NodePlace place;
        std::int64_t newest;
        std::int64_t size;
    };

    if (!Exists()) {
        return 0;
    }
    std::vector<Kept> nodes;
    for (ResultSet rows = dataBase_.Query(Command::Get_AUTO_Nodes_With_Versions, {}); !rows.AtEnd();
         rows.MoveNext()) {
        nodes.push_back({{{rows.Number16("ConfigID"), rows.Number16("PartID")}, rows.Number16("NodeNumber")},
                         rows.Number64("VersionNo"),
                         rows.Number64("Size")});
    }
    Batch batch(dataBase_);
    for (const auto& [place, newest, size] : nodes) {
        Prune(batch, place, newest, size, INT_MAX);
    }
    std::int64_t pruned = 0;
    for (const std::int64_t written : batch.Run()) {
        pruned += written;
    }
    dataBase_.Flush();
    return pruned;
}

} // namespace KAL_AUTO_Node
