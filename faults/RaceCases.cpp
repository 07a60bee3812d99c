#include "Cases.h"
#include "Child.h"
#include "Scene.h"

#include <algorithm>
#include <deque>

namespace KAL_AUTO_Node {

namespace {

constexpr int ManyRows = 100;

void Race(Row& row, Scene& scene, int savers, Child::World world) {
    ++row.tries;
    scene.Reset();
    std::deque<Child> windows;
    for (int saver = 1; saver <= savers; ++saver) {
        if (windows.emplace_back(world).Ask("load") != "loaded") {
            row.skipped = true;
            row.remarks = "no name spaces may be made";
            return;
        }
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
        } else if (answer == "told changed" || answer == "told being saved") {
            ++row.told;
        } else {
            row.Wrong(answer);
        }
    }
    DataBase dataBase;
    const NodeContent stored = ReadContent(dataBase, Place);
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

} // namespace

void RaceSaves(Extent extent, const Tell& tell) {
    struct Kind {
        const char* who;
        int savers;
        Child::World world;
        int atLength;
        int brief;
    };

    const std::vector<Journal> journals =
        TestStore::OnServer() ? std::vector{Journal::Server} : std::vector(Journals.begin(), Journals.end());
    for (const Journal journal : journals) {
        for (const auto& [who, savers, world, atLength, brief] :
             {Kind{"", 2, Child::World::Here, 400, 6}, Kind{"", 5, Child::World::Here, 100, 2},
              Kind{" by twins that do not see each other", 2, Child::World::OwnProcesses, 100, 3},
              Kind{" by two machines of one name", 2, Child::World::OwnMachine, 100, 3}}) {
            Row row(std::to_string(savers) + " simultaneous saves of 100 rows" + who + ", " +
                    NameOf(journal));
            Scene scene(journal, ManyRows);
            for (int count = extent.Of(atLength, brief); count > 0 && !row.skipped; --count) {
                Race(row, scene, savers, world);
            }
            tell(row);
        }
    }
}

void AnswerLate(Extent /*extent*/, const Tell& tell) {
    for (const Journal journal : Journals) {
        Row row(std::string("a question whether to put back that is answered after a save, ") +
                NameOf(journal));
        Scene scene(journal);
        scene.Reset();
        ++row.tries;
        const std::string order = "save 1 " + std::to_string(scene.Rows());
        Child killed;
        killed.Ask("load");
        killed.Ask(journal == Journal::WriteAhead ? "arm kill 30" : "arm kill 150");
        killed.Tell(order);
        killed.AwaitEnd();
        Child late;
        if (late.Ask("see") != "half") {
            row.Wrong("no question");
        }
        Saver other(Place);
        if (other.Save(Intended(other.Load(), 1, scene.Rows()))) {
            row.Wrong("the other cannot save");
        }
        row.told += 1;
        if (const std::string answer = late.Ask("answer"); answer != "refused") {
            row.Unseen(answer);
        }
        scene.Judge(row);
        tell(row);
    }
}

void TakeOverSaves(Extent /*extent*/, const Tell& tell) {
    struct Kind {
        const char* name;
        bool finished;
        const char* machine;
    };

    for (const auto& [name, finished, machine] :
         {Kind{"a save held beyond the limit elsewhere goes on while another is at it", false, "''"},
          Kind{"a save held beyond the limit elsewhere goes on after another", true, "''"},
          Kind{"a save held beyond the limit here goes on after another", true, "Machine"}}) {
        Row row(name);
        Scene scene(Journal::WriteAhead);
        scene.Reset();
        ++row.tries;
        const std::string rows = std::to_string(scene.Rows());
        Child slow;
        slow.Ask("load");
        slow.Ask("save 2 " + rows + " hold");
        scene.Execute(
            std::string("UPDATE Node_AUTO_Version SET BegunAt = '2020-01-01T00:00:00.000Z', Machine = ") +
            machine);
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
        if (first == (finished ? "told changed" : "told being saved")) {
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
