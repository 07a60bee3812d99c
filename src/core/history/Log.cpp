// The changes of all nodes, and whether what is kept of them can be put back.

#include "history/History.h"
#include "platform/RuntimeError.h"
#include "store/Connection.h"
#include "store/DataBase.h"

namespace KAL_AUTO_Node {

namespace {

constexpr const char* BehindAllTimes = "9999";

NodePlace PlaceIn(const ResultSet& row) {
    return {{row.Number16("ConfigID"), row.Number16("PartID")}, row.Number16("NodeNumber")};
}

} // namespace

void History::ReadLog(const LogScope& scope,
                      const std::function<void(const NodePlace&, const Version&)>& take) {
    if (!Exists()) {
        return;
    }
    const std::string until = scope.until.empty() ? BehindAllTimes : scope.until;
    ResultSet rows = scope.partition ? dataBase_.Query(Command::Get_Log_Of_Partition,
                                                       {*scope.partition, scope.since, until})
                                     : dataBase_.Query(Command::Get_Log, {scope.since, until});
    for (; !rows.AtEnd(); rows.MoveNext()) {
        take(PlaceIn(rows), VersionIn(rows));
    }
}

std::size_t History::Verify() {
    std::size_t count = 0;
    if (!Exists()) {
        return count;
    }
    DataBase scratch(OpenScratchStore());
    for (ResultSet rows = dataBase_.Query(Command::Get_Contents, {}); !rows.AtEnd(); rows.MoveNext()) {
        const NodePlace place = PlaceIn(rows);
        try {
            NodeContent content = ContentOf(std::string(rows.Text("Content")));
            WriteContent(scratch, place, content);
            content.entryRead = true;
            if (ReadContent(scratch, place) != content) {
                throw RuntimeError(ErrorNumber::StoreNotRecognized, "it comes back as another");
            }
        } catch (const RuntimeError& error) {
            throw RuntimeError(ErrorNumber::StoreNotRecognized, place.Text() + ", version " +
                                                                    std::string(rows.Text("VersionNo")) +
                                                                    " cannot be put back: " + error.what());
        }
        ++count;
    }
    return count;
}

} // namespace KAL_AUTO_Node
