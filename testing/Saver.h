#pragma once

#include "history/NodeSave.h"
#include "store/DataBase.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace KAL_AUTO_Node {

inline constexpr const char* SaveDate = "11/25/2026";

// Does with a node what a window does, without one.
class Saver : private SaveAudience {
  public:
    // The store is where this program looks for it, or behind a link.
    explicit Saver(const NodePlace& place, const Waits& waits = {}) : dataBase_(waits), place_(place) {}

    Saver(const std::filesystem::path& link, const NodePlace& place) : dataBase_(link), place_(place) {}

    [[nodiscard]] DataBase& Store() { return dataBase_; }

    [[nodiscard]] History& Versions() { return history_; }

    [[nodiscard]] NodeContent Read() { return ReadContent(dataBase_, place_); }

    // Takes note of the node as it is now; returns it.
    const AutoNode& Load() {
        const auto newest = history_.Newest(place_);
        seen_ = {Read(), newest ? newest->number : 0};
        return seen_.content.node.value();
    }

    [[nodiscard]] const NodeContent& Seen() const { return seen_.content; }

    [[nodiscard]] std::int64_t Version() const { return seen_.version; }

    // Puts back what is half saved, wherever that is offered; returns how often that was.
    int PutBack() {
        history_.CatchUp();
        int count = 0;
        for (auto half = history_.Unfinished(place_);
             half && history_.PutBackUnfinished(place_, half->number); half = history_.Unfinished(place_)) {
            ++count;
        }
        return count;
    }

    // Saves the node, which was loaded before. Between the save's begin and its rows comes what else it does.
    // What kept it from being saved; where it goes over changes, the latest of them is told by Met.
    std::optional<Obstacle> Save(
        const AutoNode& node, std::function<void(NodeSave&)> between = [](NodeSave& /*save*/) {}) {
        between_ = std::move(between);
        Met.reset();
        latest_.emplace(dataBase_, history_, place_);
        return latest_->Run(seen_, node, Date, *this) ? std::nullopt : Met;
    }

    // The latest save, which an error may have ended.
    [[nodiscard]] const NodeSave& Latest() const { return latest_.value(); }

    std::string Date = SaveDate; // as dates are stored
    bool GoingOver = false;
    std::optional<Obstacle> Met;

  private:
    bool GoesOver(const SeenNode& /*seen*/, const Obstacle& obstacle) override {
        Met = obstacle;
        return GoingOver && obstacle.kind == Obstacle::Changed;
    }

    void MakeMissing(NodeSave& save) override { between_(save); }

    void Writing() override {}

    DataBase dataBase_;
    History history_{dataBase_};
    NodePlace place_;
    SeenNode seen_;
    std::function<void(NodeSave&)> between_;
    std::optional<NodeSave> latest_;
};

} // namespace KAL_AUTO_Node
