#include "Cases.h"
#include "Child.h"
#include "Scene.h"

#include <algorithm>
#include <chrono>
#include <deque>

namespace KAL_AUTO_Node {

namespace {

constexpr int ManyRows = 100;

void Race(Row& row, Scene& scene, int savers) {
    ++row.tries;
    scene.Reset();
    std::deque<Child> windows(static_cast<std::size_t>(savers));
    for (Child& window : windows) {
        window.Ask("load");
    }
    for (int saver = 1; saver <= savers; ++saver) {
        windows.at(static_cast<std::size_t>(saver - 1))
            .Tell("save " + std::to_string(saver) + ' ' + std::to_string(scene.Rows()));
    }
    std::vector<int> winners;
    for (int saver = 1; saver <= savers; ++saver) {
        const std::string answer = windows.at(static_cast<std::size_t>(saver - 1)).Hear().value_or("(ended)");
        if (answer == "saved") {
            winners.push_back(saver);
        } else if (answer == "told changed" || answer == "told being saved" ||
                   answer.find("locked") != std::string::npos) {
            ++row.told;
        } else {
            row.Wrong(answer);
        }
    }
    DataBase dataBase;
    const NodeContent stored = ReadContent(dataBase, Place.partition, Place.number);
    const auto holds = [&](int saver) {
        return stored == IntendedContent(scene.Before(), saver, scene.Rows());
    };
    if (winners.size() > 1) {
        row.Unseen("overwritten by " + std::to_string(winners.size() - 1));
    }
    if (winners.empty() && stored == scene.Before()) {
        ++row.asBefore;
    } else if (std::ranges::none_of(winners, holds)) {
        row.Lost("mixed, or not the one that was said to be saved");
    } else {
        ++row.whole;
    }
}

std::string Seconds(std::chrono::steady_clock::time_point since) {
    return std::to_string(
               std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - since)
                   .count()) +
           " s";
}

} // namespace

void RaceSaves(Extent extent, const Tell& tell) {
    struct Kind {
        int savers;
        int atLength;
        int brief;
    };

    for (const Journal journal : Journals) {
        for (const auto& [savers, atLength, brief] : {Kind{2, 400, 6}, Kind{5, 100, 2}}) {
            Row row(std::to_string(savers) + " simultaneous saves of 100 rows, " + NameOf(journal));
            const auto start = std::chrono::steady_clock::now();
            Scene scene(journal, ManyRows);
            for (int count = extent.Of(atLength, brief); count > 0; --count) {
                Race(row, scene, savers);
            }
            row.remarks = Seconds(start);
            tell(row);
        }
    }
}

void TakeOverSaves(Extent /*extent*/, const Tell& tell) {
    struct Kind {
        const char* name;
        bool finished;
        const char* host;
    };

    for (const auto& [name, finished, host] :
         {Kind{"a save held beyond the limit elsewhere goes on while another is at it", false, "'elsewhere'"},
          Kind{"a save held beyond the limit elsewhere goes on after another", true, "'elsewhere'"},
          Kind{"a save held beyond the limit here goes on after another", true, "HostName"}}) {
        Row row(name);
        Scene scene(Journal::WriteAhead);
        scene.Reset();
        ++row.tries;
        const std::string rows = std::to_string(scene.Rows());
        Child slow;
        slow.Ask("load");
        slow.Ask("save 2 " + rows + " hold");
        scene.Execute(
            std::string("UPDATE Node_AUTO_Version SET BegunAt = '2020-01-01T00:00:00.000Z', HostName = ") +
            host);
        Child quick;
        quick.Ask("load");
        std::string second = quick.Ask("save 1 " + rows + (finished ? "" : " hold"));
        const std::string first = slow.Ask("go on");
        if (!finished) {
            second = quick.Ask("go on");
        }
        if (second != "saved") {
            row.Wrong("the other: " + second);
        }
        if (first.starts_with("failed") && first.find("meanwhile") != std::string::npos) {
            ++row.told;
        } else {
            row.Unseen("the held one: " + first);
        }
        if (const std::string again = slow.Ask("save 2 " + rows); again != "told changed") {
            row.Unseen("the held one, once more: " + again);
        }
        scene.Judge(row);
        tell(row);
    }
}

} // namespace KAL_AUTO_Node
