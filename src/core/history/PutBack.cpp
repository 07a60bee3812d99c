// Putting nodes back, and making whole what was begun to be made from templates.

#include "history/History.h"
#include "nodes/NodeTypes.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"

#include <algorithm>

namespace KAL_AUTO_Node {

NodeContent History::ToPutBack(const NodePlace& place, std::int64_t version) {
    RequireIdle(place);
    return Before(place, version);
}

NodeContent History::PutBack(const NodePlace& place, std::int64_t version, const char* work) {
    std::optional<Transaction> all(std::in_place, dataBase_, place.LockKey());
    return PutBackNow(place, version, work, all);
}

bool History::PutBackUnfinished(const NodePlace& place, std::int64_t version) {
    std::optional<Transaction> all(std::in_place, dataBase_, place.LockKey());
    // One that has finished since leaves no older one unfinished.
    const auto unfinished = Unfinished(place);
    if (!unfinished || unfinished->number != version) {
        return false;
    }
    PutBackNow(place, version, "put back", all);
    return true;
}

NodeContent History::PutBackNow(const NodePlace& place, std::int64_t version, const char* work,
                                std::optional<Transaction>& all) {
    std::vector<std::int64_t> undone = {version};
    const NodeContent before = ToPutBack(place, version);
    Batch batch(dataBase_);
    // What a later change has left half-way goes with it.
    for (const Version& later : Open(place)) {
        if (later.number > version) {
            undone.push_back(later.number);
        }
    }
    NodeContent replaced = ReadContent(dataBase_, place);
    Add(batch, place, work, VersionState::Finished, replaced);
    batch.Run();
    WriteContent(dataBase_, place, before);
    for (const std::int64_t number : undone) {
        SetState(batch, place, number, VersionState::PutBack);
    }
    all->Commit(batch);
    all.reset();
    dataBase_.Flush();
    for (const std::int64_t number : undone) {
        FinishCreations(place, number);
    }
    return replaced;
}

bool History::IsHalfMade(const NodePlace& place) {
    if (dataBase_.IsRemote() || !Exists()) {
        return false;
    }
    NodePlace maker{place.partition, 0};
    {
        const ResultSet row = dataBase_.Query(Command::Get_Creation, {place.partition, place.Key()});
        if (row.AtEnd()) {
            return false;
        }
        maker.number = row.Number16("MasterID");
    }
    return std::ranges::none_of(Open(maker), IsBeingMade) &&
           !IsNodeExisted(dataBase_, place.partition, place.Key());
}

void History::MakeWhole(const NodePlace& place) {
    std::string date;
    {
        const ResultSet row = dataBase_.Query(Command::Get_Creation, {place.partition, place.Key()});
        date = row.AtEnd() ? std::string() : std::string(row.Text("DateModified"));
    }
    CreateNodeFromTemplate(dataBase_, place.partition, TemplateNumber, place.Key(), date, Existing::Keep);
    dataBase_.Flush();
}

void History::FinishCreations(const NodePlace& place, std::int64_t version) {
    if (dataBase_.IsRemote()) {
        return; // nothing is half made there, and a line that is lost by now would seem to have kept it from
                // being put back
    }

    struct Begun {
        NodeKey node;
        std::string date;
    };

    std::vector<Begun> creations;
    for (ResultSet rows = dataBase_.Query(Command::Get_Creations, {place, version}); !rows.AtEnd();
         rows.MoveNext()) {
        creations.push_back(
            {{rows.Number("NodeTypeID"), rows.Number("NodeNumber")}, std::string(rows.Text("DateModified"))});
    }
    if (creations.empty()) {
        return;
    }
    for (const auto& [node, date] : creations) {
        if (!IsNodeExisted(dataBase_, place.partition, node)) {
            CreateNodeFromTemplate(dataBase_, place.partition, TemplateNumber, node, date, Existing::Keep);
        }
    }
    dataBase_.Flush();
}

} // namespace KAL_AUTO_Node
