#include "Saver.h"

#include "nodes/AutoNodeWriter.h"

#include <stdexcept>

namespace KAL_AUTO_Node {

const AutoNode& Saver::Load() {
    const auto versions = history_.Versions(place_);
    version_ = versions.empty() ? 0 : versions.front().number;
    loaded_ = Read().node.value();
    return loaded_;
}

int Saver::PutBack() {
    int count = 0;
    while (const auto half = history_.Unfinished(place_)) {
        history_.PutBack(place_, half->number, "put back");
        ++count;
    }
    return count;
}

std::optional<Obstacle> Saver::Save(const AutoNode& node, const std::function<void(NodeSave&)>& between) {
    NodeSave save(dataBase_, history_, place_);
    if (auto obstacle = save.Begin(loaded_, version_)) {
        return obstacle;
    }
    try {
        between(save);
        save.Renew();
        WriteAutoNode(dataBase_, place_.partition, place_.number, node, SaveDate);
        save.Finish();
    } catch (...) {
        static_cast<void>(save.Fail());
        throw;
    }
    loaded_ = node;
    version_ = save.VersionNumber();
    return std::nullopt;
}

void CreateMissing(DataBase& dataBase, NodeSave& save) {
    for (const auto& [typeID, number] : MissingNodes) {
        if (!IsNodeExisted(dataBase, Place.partition, typeID, number) &&
            save.Create(typeID, number, SaveDate) != Creation::Created) {
            throw std::runtime_error("a node of type " + std::to_string(typeID) + " cannot be created");
        }
    }
}

} // namespace KAL_AUTO_Node
