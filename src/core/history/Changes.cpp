#include "history/Changes.h"

#include "history/History.h"
#include "platform/RuntimeError.h"

#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Nothing where the content of the one version cannot be read.
std::optional<NodeContent> ReadBefore(History& history, const NodePlace& place, std::int64_t version) {
    try {
        return history.Before(place, version);
    } catch (const RuntimeError& error) {
        if (error.Number() == ErrorNumber::StoreNotRecognized) {
            return std::nullopt;
        }
        throw;
    }
}

} // namespace

std::vector<std::string> ChangesInWords(const std::optional<AutoNode>& before,
                                        const std::optional<AutoNode>& after) {
    if (before && after) {
        return Differences(*before, *after);
    }
    if (before) {
        return {"the node is gone"};
    }
    return after ? std::vector<std::string>{"the node is new"} : std::vector<std::string>{};
}

std::vector<Change> ReadChanges(DataBase& dataBase, History& history, const NodePlace& place) {
    std::vector<Change> changes;
    std::optional after = ReadContent(dataBase, place);
    for (Version& version : history.Versions(place)) {
        auto before = ReadBefore(history, place, version.number);
        auto words = before && after ? ChangesInWords(before->node, after->node)
                                     : std::vector<std::string>{"what it changed cannot be read"};
        changes.push_back({std::move(version), std::move(words)});
        after = std::move(before);
    }
    return changes;
}

std::string OutcomeOf(const Version& version) {
    return version.work + (version.state == VersionState::Finished ? "" : ", " + version.state) +
           (version.note.empty() ? "" : ": " + version.note);
}

} // namespace KAL_AUTO_Node
