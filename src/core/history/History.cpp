#include "history/History.h"

#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"
#include "store/Batch.h"
#include "store/Scripts.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

constexpr const char* VersionTable = "Node_AUTO_Version";

std::string Named(const NodePlace& place) {
    return "AUTO node " + std::to_string(place.number) + " of configuration " +
           std::to_string(place.partition.config) + ", partition " + std::to_string(place.partition.number);
}

// A change of this process's. One that ended before it was stored has left its number to others.
auto FindOwn(std::vector<Version>& versions, int number, const ProcessIdentity& self) {
    return std::ranges::find_if(
        versions, [&](const Version& version) { return version.number == number && version.author == self; });
}

} // namespace

bool History::Exists() {
    exists_ = exists_ || dataBase_.HasTable(VersionTable);
    return exists_;
}

bool History::Prepare() {
    TryToMarkEnded();
    if (!Exists()) {
        try {
            dataBase_.MakeTables(HistoryScript);
        } catch (const RuntimeError& error) {
            // Another workstation may have made them meanwhile; where they may not be made, saving goes on
            // without.
            if (!Exists() && error.Number() != ErrorNumber::PermissionDenied) {
                throw;
            }
            return exists_;
        }
        exists_ = true;
    }
    return true;
}

ProcessIdentity History::Self() {
    ProcessIdentity self = ThisProcess();
    // The server's rules for who may change what of the history go by this end of the name.
    if (const std::string role = dataBase_.Role(); !role.empty() && role != self.user) {
        self.user += " as " + role;
    }
    return self;
}

std::vector<Version> History::Stored(const NodePlace& place) {
    std::vector<Version> versions;
    if (!Exists()) {
        return versions;
    }
    for (ResultSet rows = dataBase_.Query(Command::Get_AUTO_Versions,
                                          {place.partition.config, place.partition.number, place.number});
         !rows.AtEnd(); rows.MoveNext()) {
        const auto text = [&](const char* column) { return std::string(rows.Text(column)); };
        versions.push_back({rows.Number("VersionNo"),
                            text("Work"),
                            text("State"),
                            text("BegunAt"),
                            {text("UserName"), text("HostName"), text("Program"), rows.Number("ProcessID"),
                             text("ProcessStart")}});
    }
    return versions;
}

void History::ReadVersionsAhead(ReadAhead& ahead, const NodePlace& place) {
    ahead.Add(Command::Get_AUTO_Versions, {place.partition.config, place.partition.number, place.number});
}

std::vector<Version> History::Versions(const NodePlace& place) {
    auto versions = Stored(place);
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

NodeContent History::Before(const NodePlace& place, int version) {
    const std::string missing = Named(place) + " has no version " + std::to_string(version);
    if (!Exists()) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, missing);
    }
    const ResultSet row =
        dataBase_.Query(Command::Get_AUTO_Version_Content,
                        {place.partition.config, place.partition.number, place.number, version});
    if (row.AtEnd()) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, missing);
    }
    try {
        return ContentOf(std::string(row.Text("Content")));
    } catch (const RuntimeError& error) {
        throw RuntimeError(error.Number(),
                           Named(place) + ", version " + std::to_string(version) + ": " + error.what());
    }
}

bool History::IsAsBefore(const NodePlace& place, int version) {
    try {
        return ReadContent(dataBase_, place.partition, place.number) == Before(place, version);
    } catch (const RuntimeError& error) {
        // Nobody can tell, and a change that never got to its end must not go unseen.
        if (error.Number() == ErrorNumber::StoreNotRecognized) {
            return false;
        }
        throw;
    }
}

std::optional<Version> History::Unfinished(const NodePlace& place, bool onlyRead) {
    if (!onlyRead) {
        TryToMarkEnded();
    }
    const auto versions = Versions(place);
    if (std::ranges::any_of(versions, IsBeingMade)) {
        return std::nullopt;
    }
    for (const Version& version : versions) {
        if (!IsUnfinished(version)) {
            continue;
        }
        if (!IsAsBefore(place, version.number)) {
            return version;
        }
        // The number of one that is dropped is given anew, and its owner would take the other for its own.
        if (!onlyRead && IsSurelyOver(version)) {
            Drop(place, version.number);
        }
    }
    return std::nullopt;
}

void History::End(const NodePlace& place, int version, const char* state) {
    ended_.push_back({place, version, state});
    MarkEnded();
}

void History::MarkEnded() {
    while (!ended_.empty()) {
        const auto& [place, version, state] = ended_.front();
        const auto& [partition, node] = place;
        Transaction all(dataBase_, place.Number());
        Batch batch(dataBase_);
        if (auto versions = Stored(place); FindOwn(versions, version, Self()) != versions.end()) {
            SetState(batch, place, version, state);
            if (state == std::string_view(VersionState::Finished)) {
                batch.Add(Command::Leave_AUTO_Versions, {partition.config, partition.number, node, version});
                batch.Add(Command::Delete_Finished_Creations, {partition.config, partition.number, node});
            }
        }
        all.Commit(batch);
        ended_.erase(ended_.begin());
    }
}

void History::TryToMarkEnded() noexcept {
    try {
        MarkEnded();
    } catch (const RuntimeError&) {
        // Whatever is to be done now tells of it if it cannot be done either.
    }
}

void History::Drop(const NodePlace& place, int version) {
    dataBase_.Execute(Command::Delete_AUTO_Version,
                      {place.partition.config, place.partition.number, place.number, version});
    Forget(place, version);
}

void History::Forget(const NodePlace& place, int version) {
    std::erase_if(ended_,
                  [&](const Ended& ended) { return ended.place == place && ended.version == version; });
}

int History::Add(Batch& batch, const NodePlace& place, const char* work, const char* state,
                 const NodeContent& before) {
    return Add(batch, place, Versions(place), work, state, before);
}

int History::Add(Batch& batch, const NodePlace& place, const std::vector<Version>& versions, const char* work,
                 const char* state, const NodeContent& before) {
    const int number = versions.empty() ? 1 : versions.front().number + 1;
    Forget(place, number); // it was that of a change that never was
    const ProcessIdentity author = Self();
    const auto& [partition, node] = place;
    batch.Add(Command::Add_AUTO_Version,
              {partition.config, partition.number, node, number, work, state, TimeStamp(), author.user,
               author.host, author.program, author.process, author.start, TextOf(partition, node, before)});
    if (number > KeptVersions) {
        batch.Add(Command::Prune_AUTO_Versions,
                  {partition.config, partition.number, node, number - KeptVersions, TimeStamp(KeptDays)});
    }
    return number;
}

bool History::HasBegun(Partition partition, int typeID, int number) {
    return !dataBase_
                .Query(Command::Get_Creation,
                       {partition.config, partition.number, NodeTypeOf(typeID), number})
                .AtEnd();
}

void History::SetState(Batch& batch, const NodePlace& place, int version, const char* state) {
    batch.Add(Command::Set_AUTO_Version_State,
              {state, place.partition.config, place.partition.number, place.number, version});
}

void History::RequireIdle(const NodePlace& place, const std::vector<Version>& versions) {
    if (const auto made = std::ranges::find_if(versions, IsBeingMade); made != versions.end()) {
        throw RuntimeError(ErrorNumber::Busy, Named(place) + " is being saved by " +
                                                  Visible(AuthorText(*made)) + " since " +
                                                  LocalTime(made->begunAt));
    }
}

void History::RequireIdle(std::span<const NodePlace> places) {
    while (!places.empty()) {
        const auto together = TakeTogether(places);
        ReadAhead ahead(dataBase_);
        if (Exists()) {
            for (const NodePlace& place : together) {
                ReadVersionsAhead(ahead, place);
            }
            ahead.Fetch();
        }
        for (const NodePlace& place : together) {
            RequireIdle(place, Versions(place));
        }
    }
}

void History::Keep(std::span<const NodePlace> places, const char* work, const TakeContent& take) {
    while (!places.empty()) {
        const auto together = TakeTogether(places);
        ReadAhead ahead(dataBase_);
        for (const NodePlace& place : together) {
            ReadVersionsAhead(ahead, place);
            ReadContentAhead(ahead, place.partition, place.number);
        }
        ahead.Fetch();
        Batch batch(dataBase_);
        for (const NodePlace& place : together) {
            const auto versions = Versions(place);
            RequireIdle(place, versions);
            NodeContent before = ReadContent(dataBase_, place.partition, place.number);
            const int version = Add(batch, place, versions, work, VersionState::Finished, before);
            if (!versions.empty()) {
                batch.Add(Command::Leave_AUTO_Versions,
                          {place.partition.config, place.partition.number, place.number, version});
            }
            if (take) {
                take(place, std::move(before));
            }
        }
        batch.Run();
    }
}

NodeContent History::ToPutBack(const NodePlace& place, int version) {
    RequireIdle(place, Versions(place));
    NodeContent before = Before(place, version);
    if (!before.node) {
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                           Named(place) + " did not exist before version " + std::to_string(version));
    }
    return before;
}

NodeContent History::PutBack(const NodePlace& place, int version, const char* work) {
    NodeContent replaced;
    std::vector<int> undone = {version};
    {
        Transaction all(dataBase_, place.Number());
        const NodeContent before = ToPutBack(place, version);
        Batch batch(dataBase_);
        // What a later change has left half-way goes with it.
        for (const Version& later : Versions(place)) {
            if (later.number > version && IsUnfinished(later)) {
                undone.push_back(later.number);
            }
        }
        replaced = ReadContent(dataBase_, place.partition, place.number);
        Add(batch, place, work, VersionState::Finished, replaced);
        batch.Run();
        WriteContent(dataBase_, place.partition, place.number, before);
        for (const int number : undone) {
            SetState(batch, place, number, VersionState::PutBack);
        }
        all.Commit(batch);
    }
    dataBase_.Flush();
    for (const int number : undone) {
        FinishCreations(place, number);
    }
    return replaced;
}

void History::FinishCreations(const NodePlace& place, int version) {
    struct Begun {
        int typeID;
        int number;
        std::string date;
    };

    const auto& [partition, node] = place;
    std::vector<Begun> creations;
    for (ResultSet rows =
             dataBase_.Query(Command::Get_Creations, {partition.config, partition.number, node, version});
         !rows.AtEnd(); rows.MoveNext()) {
        creations.push_back(
            {rows.Number("NodeTypeID"), rows.Number("NodeNumber"), std::string(rows.Text("DateModified"))});
    }
    for (const auto& [typeID, number, date] : creations) {
        if (!IsNodeExisted(dataBase_, partition, typeID, number)) {
            CreateNodeFromTemplate(dataBase_, partition, TemplateNumber, number, typeID, date,
                                   Existing::Keep);
        }
    }
    dataBase_.Flush();
}

std::int64_t History::Prune() {
    struct Kept {
        NodePlace place;
        int newest;
    };

    if (!Exists()) {
        return 0;
    }
    std::vector<Kept> nodes;
    for (ResultSet rows = dataBase_.Query(Command::Get_AUTO_Nodes_With_Versions, {}); !rows.AtEnd();
         rows.MoveNext()) {
        nodes.push_back({{{rows.Number16("ConfigID"), rows.Number16("PartID")}, rows.Number16("NodeNumber")},
                         rows.Number("VersionNo")});
    }
    std::int64_t pruned = 0;
    for (const auto& [place, newest] : nodes) {
        pruned += dataBase_.Execute(Command::Prune_AUTO_Versions,
                                    {place.partition.config, place.partition.number, place.number,
                                     newest - KeptVersions, TimeStamp(KeptDays)});
    }
    dataBase_.Flush();
    return pruned;
}

} // namespace KAL_AUTO_Node
