#include "Actor.h"

#include "FaultySystem.h"
#include "Scene.h"
#include "history/NodeSave.h"
#include "nodes/AutoNodeWriter.h"
#include "platform/RuntimeError.h"

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

const std::map<std::string, Fault> Faults = {{"none", Fault::None},
                                             {"kill", Fault::Kill},
                                             {"eio", Fault::InputOutput},
                                             {"full", Fault::Full},
                                             {"pause", Fault::Pause}};

class Window {
  public:
    // False when it is over.
    bool Do(const std::string& order) {
        std::istringstream words(order);
        std::string verb;
        words >> verb;
        if (verb == "load") {
            Load();
            Say("loaded");
        } else if (verb == "save") {
            Say(Save(words));
        } else if (verb == "put") {
            Say("put back " + std::to_string(PutBack()));
        } else if (verb == "arm") {
            std::string fault;
            std::string lasting;
            int at = 0;
            words >> fault >> at >> lasting;
            Arm(Faults.at(fault), at, !lasting.empty(), [] { Hold("paused"); });
            Say("armed");
        } else if (verb == "disarm") {
            Disarm();
            Say(std::to_string(WritesSinceArmed()));
        } else if (verb == "read") {
            read_.emplace(dataBase_.Query(Command::Get_AUTO_ActionsNode, {1, 2, Place.number}));
            Say("reading");
        } else if (verb == "keep") {
            Say("reading");
            while (true) {
                KeepReading();
            }
        } else if (verb == "lock") {
            int milliseconds = 0;
            words >> milliseconds;
            const Transaction all(dataBase_);
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
    void Load() {
        PutBack();
        loaded_ = *ReadAutoNode();
    }

    std::optional<AutoNode> ReadAutoNode() {
        const auto versions = history_.Versions(Place);
        version_ = versions.empty() ? 0 : versions.front().number;
        return ReadContent(dataBase_, Place.partition, Place.number).node;
    }

    // Where it is offered, the answer is yes.
    int PutBack() {
        int count = 0;
        while (const auto save = history_.Unfinished(Place)) {
            history_.PutBack(Place, save->number, "put back");
            ++count;
        }
        return count;
    }

    // As the window does it.
    std::string Save(std::istringstream& words) {
        int saver = 0;
        int rows = 0;
        words >> saver >> rows;
        std::set<std::string> options;
        for (std::string option; words >> option;) {
            options.insert(option);
        }
        const AutoNode node = Intended(loaded_, saver, rows);
        NodeSave save(dataBase_, history_, Place);
        if (const auto obstacle = save.Begin(loaded_, version_)) {
            return obstacle->kind == Obstacle::Changed      ? "told changed"
                   : obstacle->kind == Obstacle::BeingSaved ? "told being saved"
                                                            : "told gone";
        }
        std::string failure;
        try {
            if (options.contains("create")) {
                failure = Create(save);
            }
            if (options.contains("hold")) {
                Hold("holding");
            }
            save.Renew();
            WriteAutoNode(dataBase_, Place.partition, Place.number, node, SaveDate);
            save.Finish();
        } catch (...) {
            static_cast<void>(save.Fail());
            throw;
        }
        loaded_ = node;
        version_ = save.VersionNumber();
        return failure.empty() ? "saved" : "saved but " + failure;
    }

    // A creation that fails ends the others, not the save.
    static std::string Create(NodeSave& save) {
        try {
            for (const auto& [typeID, number] : MissingNodes) {
                save.Create(typeID, number, SaveDate);
            }
            return {};
        } catch (const RuntimeError& error) {
            return error.what();
        }
    }

    void KeepReading() {
        try {
            static_cast<void>(ReadContent(dataBase_, Place.partition, Place.number));
        } catch (const RuntimeError&) {
            // Locked out for a moment.
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    DataBase dataBase_;
    History history_{dataBase_};
    AutoNode loaded_;
    int version_ = 0;
    std::optional<ResultSet> read_;
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
