#include "Cases.h"
#include "Child.h"
#include "Scene.h"

#include <optional>

namespace KAL_AUTO_Node {

namespace {

std::string Order(const Scene& scene) { return "save 1 " + std::to_string(scene.Rows()); }

// Kills a process at one write after the other of what it was ordered to do, until it comes to its end.
// Prepare makes ready and returns the order; it gets the row for what went wrong so far.
template <class Prepare, class Judge>
void KillAtEveryWrite(Row& row, int step, Prepare prepare, Judge judge) {
    for (int write = 1;; write += step) {
        ++row.tries;
        Child doomed;
        const std::string order = prepare(doomed);
        doomed.Ask("arm kill " + std::to_string(write));
        doomed.Tell(order);
        const auto answer = doomed.Hear();
        if (answer) {
            doomed.Quit();
        } else {
            doomed.AwaitEnd();
        }
        judge();
        if (answer) {
            if (answer->starts_with("failed") || answer->starts_with("told") ||
                answer->starts_with("saved but")) {
                row.Wrong(*answer);
            }
            return;
        }
    }
}

// The store is open elsewhere all the time: a reader stands in it where that keeps nobody from writing, or
// comes again and again.
void Occupy(Child& reader, Journal journal) {
    reader.Ask(journal == Journal::WriteAhead ? "read" : "keep reading");
}

} // namespace

void KillSaves(Extent extent, const Tell& tell) {
    for (const Journal journal : Journals) {
        for (const bool alone : {true, false}) {
            Row row(std::string("SIGKILL in a save, ") + NameOf(journal) +
                    (alone ? ", alone" : ", store held elsewhere"));
            Scene scene(journal);
            std::optional<Child> reader;
            KillAtEveryWrite(
                row, extent.Of(1, journal == Journal::WriteAhead ? 9 : 31),
                [&](Child& doomed) {
                    reader.reset();
                    scene.Reset();
                    if (!alone) {
                        Occupy(reader.emplace(), journal);
                    }
                    doomed.Ask("load");
                    return Order(scene);
                },
                [&] { scene.Judge(row); });
            tell(row);
        }
    }
}

void KillPutBacks(Extent extent, const Tell& tell) {
    for (const Journal journal : Journals) {
        Row row(std::string("SIGKILL while a node is put back, ") + NameOf(journal));
        Scene scene(journal);
        KillAtEveryWrite(
            row, extent.Of(1, 13),
            [&](Child& doomed) {
                scene.Reset();
                Child saver;
                saver.Ask("load");
                saver.Ask(journal == Journal::WriteAhead ? "arm kill 30" : "arm kill 150");
                saver.Tell(Order(scene));
                saver.AwaitEnd();
                static_cast<void>(doomed);
                return std::string("put back");
            },
            [&] { scene.Judge(row); });
        tell(row);
    }
}

void KillCreations(Extent extent, const Tell& tell) {
    for (const Journal journal : Journals) {
        for (const bool puttingBack : {true, false}) {
            Row row(std::string("SIGKILL while missing nodes are created, ") + NameOf(journal) +
                    (puttingBack ? ", put back" : ", saved again"));
            Scene scene(journal, 4);
            KillAtEveryWrite(
                row, extent.Of(1, journal == Journal::WriteAhead ? 41 : 151),
                [&](Child& doomed) {
                    scene.Reset();
                    doomed.Ask("load");
                    return Order(scene) + " create";
                },
                [&] { scene.JudgeCreations(row, puttingBack); });
            tell(row);
        }
    }
}

} // namespace KAL_AUTO_Node
