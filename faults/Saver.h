#pragma once

#include "Scene.h"
#include "history/NodeSave.h"

#include <functional>

namespace KAL_AUTO_Node {

// Does with a node what a window does, without one.
class Saver {
  public:
    // The store is where this program looks for it, or behind a link.
    explicit Saver(const NodePlace& place = Place) : place_(place) {}

    explicit Saver(const std::filesystem::path& link, const NodePlace& place = Place)
        : dataBase_(link), place_(place) {}

    [[nodiscard]] DataBase& Store() { return dataBase_; }

    [[nodiscard]] History& Versions() { return history_; }

    [[nodiscard]] NodeContent Read() { return ReadContent(dataBase_, place_.partition, place_.number); }

    // Takes note of the node as it is now; returns it.
    const AutoNode& Load();

    // Puts back what is half saved, wherever that is offered; returns how often that was.
    int PutBack();

    // Saves the node, which was loaded before. Between the save's begin and its rows comes what else it does.
    std::optional<Obstacle> Save(
        const AutoNode& node, const std::function<void(NodeSave&)>& between = [](NodeSave& /*save*/) {});

  private:
    DataBase dataBase_;
    History history_{dataBase_};
    NodePlace place_;
    AutoNode loaded_;
    int version_ = 0;
};

// Makes those of the missing nodes that are not there.
void CreateMissing(DataBase& dataBase, NodeSave& save);

} // namespace KAL_AUTO_Node
