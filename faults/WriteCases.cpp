#include "Cases.h"
#include "Child.h"
#include "Scene.h"

namespace KAL_AUTO_Node {

namespace {

struct FaultKind {
    const char* name;
    const char* words; // of the order: fault, and how long
    bool lasting;
};

constexpr std::array<FaultKind, 4> Kinds = {{{"EIO once", "eio", false},
                                             {"EIO from then on", "eio", true},
                                             {"ENOSPC once", "full", false},
                                             {"ENOSPC from then on", "full", true}}};

std::string Arming(const FaultKind& kind, int write) {
    return std::string("arm ") + kind.words + ' ' + std::to_string(write) + (kind.lasting ? " lasting" : "");
}

// A report has to say where and what.
void RequireReport(Row& row, const std::string& answer) {
    if (!answer.starts_with("failed ")) {
        row.Wrong(answer);
    } else if (answer.find("NewDB.mdb") == std::string::npos) {
        row.Wrong("a report that does not name the file: " + answer);
    }
    ++row.told;
}

// How many writes an order makes, after what it needs.
int WritesOf(Scene& scene, const std::string& order, auto prepare) {
    scene.Reset();
    prepare();
    Child child;
    child.Ask("load");
    child.Ask("arm none 0");
    child.Ask(order);
    return std::stoi(child.Ask("disarm"));
}

std::string Order(const Scene& scene) { return "save 1 " + std::to_string(scene.Rows()); }

// Lets one write after the other of a save fail. Judge gets the window that saved.
void FailEveryWrite(Row& row, int step, Scene& scene, const FaultKind& kind, const std::string& order,
                    auto judge) {
    const int writes = WritesOf(scene, order, [] {});
    for (int write = 1; write <= writes; write += step) {
        ++row.tries;
        scene.Reset();
        Child window;
        window.Ask("load");
        window.Ask(Arming(kind, write));
        const std::string answer = window.Ask(order);
        judge(window, answer);
    }
}

} // namespace

void FailWrites(Extent extent, const Tell& tell) {
    for (const Journal journal : Journals) {
        for (const FaultKind& kind : Kinds) {
            for (const bool here : {true, false}) {
                Row row(std::string(kind.name) + " in a save, " + NameOf(journal) +
                        (here ? ", opened again there" : ", opened by another"));
                Scene scene(journal);
                FailEveryWrite(row, extent.Of(1, journal == Journal::WriteAhead ? 29 : 131), scene, kind,
                               Order(scene), [&](Child& window, const std::string& answer) {
                                   if (answer != "saved") {
                                       RequireReport(row, answer);
                                   }
                                   if (here) {
                                       window.Ask("disarm");
                                       const std::string mended = window.Ask("put back");
                                       row.putBack += mended == "put back 1" ? 1 : 0;
                                       row.asBefore -= mended == "put back 1" ? 1 : 0;
                                       if (!mended.starts_with("put back")) {
                                           row.Wrong(mended);
                                       }
                                   } else {
                                       window.Quit();
                                   }
                                   scene.Judge(row);
                               });
                tell(row);
            }
        }
    }
}

void FailWritesOfPutBacks(Extent extent, const Tell& tell) {
    for (const Journal journal : Journals) {
        for (const FaultKind& kind : Kinds) {
            Row row(std::string(kind.name) + " while a node is put back, " + NameOf(journal));
            Scene scene(journal);
            const auto halve = [&] {
                Child saver;
                saver.Ask("load");
                saver.Ask(journal == Journal::WriteAhead ? "arm kill 30" : "arm kill 150");
                saver.Tell(Order(scene));
                saver.AwaitEnd();
            };
            scene.Reset();
            halve();
            int writes = 0;
            {
                Child child;
                child.Ask("arm none 0");
                child.Ask("put back");
                writes = std::stoi(child.Ask("disarm"));
            }
            for (int write = 1; write <= writes; write += extent.Of(1, 17)) {
                ++row.tries;
                scene.Reset();
                halve();
                Child window;
                window.Ask(Arming(kind, write));
                const std::string answer = window.Ask("put back");
                if (!answer.starts_with("put back")) {
                    RequireReport(row, answer);
                }
                window.Ask("disarm");
                scene.Judge(row);
            }
            tell(row);
        }
    }
}

void FailWritesOfCreations(Extent extent, const Tell& tell) {
    for (const Journal journal : Journals) {
        for (const FaultKind& kind : Kinds) {
            Row row(std::string(kind.name) + " while missing nodes are created, " + NameOf(journal));
            Scene scene(journal, 4);
            FailEveryWrite(row, extent.Of(7, 401), scene, kind, Order(scene) + " create",
                           [&](Child& window, const std::string& answer) {
                               row.told += answer == "saved" ? 0 : 1;
                               if (!answer.starts_with("saved")) {
                                   --row.told;
                                   RequireReport(row, answer);
                               }
                               window.Ask("disarm");
                               row.putBack += window.Ask("put back") == "put back 1" ? 1 : 0;
                               scene.JudgeCreations(row, false);
                           });
            tell(row);
        }
    }
}

void FailFirstSaves(Extent extent, const Tell& tell) {
    for (const Journal journal : Journals) {
        for (const FaultKind& kind : Kinds) {
            Row row(std::string(kind.name) + " in the first save of another program's store, " +
                    NameOf(journal));
            Scene scene(journal);
            scene.Reset();
            scene.Execute("DROP TABLE Node_AUTO_Version; DROP TABLE Node_Creation");
            scene.Keep();
            FailEveryWrite(row, extent.Of(3, journal == Journal::WriteAhead ? 29 : 131), scene, kind,
                           Order(scene), [&](Child& window, const std::string& answer) {
                               if (answer != "saved") {
                                   RequireReport(row, answer);
                               }
                               window.Quit();
                               scene.Judge(row);
                           });
            tell(row);
        }
    }
}

} // namespace KAL_AUTO_Node
