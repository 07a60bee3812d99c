#include "Actor.h"

#include "Scene.h"
#include "platform/RuntimeError.h"
#include "testing/FaultySystem.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

void Say(std::string answer) {
    std::ranges::replace(answer, '\n', ' ');
    std::cout << answer << std::endl;
}

void Hold(const char* at) {
    Say(at);
    std::string line;
    std::getline(std::cin, line);
}

const std::map<std::string, DiskFault> Faults = {{"none", DiskFault::None},
                                                 {"kill", DiskFault::Kill},
                                                 {"eio", DiskFault::InputOutput},
                                                 {"full", DiskFault::Full},
                                                 {"pause", DiskFault::Pause}};

class Window {
  public:
    // False when it is over.
    bool Do(const std::string& order) {
        std::istringstream words(order);
        std::string verb;
        words >> verb;
        if (verb == "load") {
            saver_.PutBack();
            loaded_ = saver_.Load();
            Say("loaded");
        } else if (verb == "save") {
            Say(Save(words));
        } else if (verb == "put") {
            Say("put back " + std::to_string(saver_.PutBack()));
        } else if (verb == "see") {
            half_ = saver_.Versions().Unfinished(Place);
            Say(half_ ? "half" : "nothing");
        } else if (verb == "answer") {
            Say(saver_.Versions().PutBackUnfinished(Place, half_.value().number) ? "put back" : "refused");
        } else if (verb == "arm") {
            std::string fault;
            std::string lasting;
            int at = 0;
            words >> fault >> at >> lasting;
            Arm(Faults.at(fault), at, !lasting.empty(), [] { Hold("paused"); });
            Say("armed");
        } else if (verb == "count") {
            Say(std::to_string(WritesSinceArmed()));
        } else if (verb == "disarm") {
            Disarm();
            Say(std::to_string(WritesSinceArmed()));
        } else if (verb == "read") {
            read_.emplace(saver_.Store().Query(Command::Get_AUTO_ActionsNode, {1, 2, Place.number}));
            Say("reading");
        } else if (verb == "keep") {
            Say("reading");
            while (true) {
                KeepReading();
            }
        } else if (verb == "lock") {
            int milliseconds = 0;
            words >> milliseconds;
            const Transaction all(saver_.Store());
            Say("locked");
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        } else if (verb == "be") {
            Say(setgid(65534) == 0 && setuid(65534) == 0 ? "nobody" : "refused");
        } else {
            return false;
        }
        return true;
    }

  private:
    // As the window does it.
    std::string Save(std::istringstream& words) {
        int saver = 0;
        int rows = 0;
        words >> saver >> rows;
        std::set<std::string> options;
        for (std::string option; words >> option;) {
            options.insert(option);
        }
        std::string failure;
        const auto obstacle = saver_.Save(Intended(loaded_, saver, rows), [&](NodeSave& save) {
            if (options.contains("create")) {
                failure = Create(save);
            }
            if (options.contains("hold")) {
                Hold("holding");
            }
        });
        if (obstacle) {
            return Told(*obstacle);
        }
        return failure.empty() ? "saved" : "saved but " + failure;
    }

    static std::string Told(const Obstacle& obstacle) {
        return obstacle.kind == Obstacle::Changed      ? "told changed"
               : obstacle.kind == Obstacle::BeingSaved ? "told being saved"
                                                       : "told gone";
    }

    // A creation that fails ends the others, not the save.
    std::string Create(NodeSave& save) {
        try {
            CreateMissing(save);
            return {};
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }

    void KeepReading() {
        try {
            static_cast<void>(saver_.Read());
        } catch (const RuntimeError&) {
            // Locked out for a moment.
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    Saver saver_{Place, {.lock = std::chrono::milliseconds(600), .save = std::chrono::milliseconds(300)}};
    AutoNode loaded_;
    std::optional<ResultSet> read_;
    std::optional<Version> half_;
};

} // namespace

int Act() {
    StartFaultySystem();
    Window window;
    for (std::string order; std::getline(std::cin, order);) {
        try {
            if (!window.Do(order)) {
                return 0;
            }
        } catch (const RuntimeError& error) {
            Say(std::string("failed ") + error.what());
        }
    }
    return 0;
}

} // namespace KAL_AUTO_Node
