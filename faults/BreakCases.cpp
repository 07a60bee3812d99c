#include "Cases.h"
#include "Child.h"
#include "Scene.h"

#include <optional>

namespace KAL_AUTO_Node {

namespace {

struct FaultKind {
    const char* name;
    const char* words; // of the order
    bool lasting;
    std::array<bool, 2> brief; // also of the brief run, by the journal: each kind of failure, and each length
    std::array<const char*, 2> afterwards;
};

constexpr std::array There = {", opened by another", ", opened again there"};
constexpr std::array<FaultKind, 5> Kinds = {
    {{"SIGKILL", "kill", false, {true, true}, {", alone", ", store held elsewhere"}},
     {"EIO once", "eio", false, {true, false}, There},
     {"EIO from then on", "eio", true, {false, true}, There},
     {"ENOSPC once", "full", false, {false, true}, There},
     {"ENOSPC from then on", "full", true, {true, false}, There}}};

constexpr std::array Created = {", put back", ", saved again"};

struct Work {
    const char* name;
    const char* order; // after the number of rows, of a save
    int rows;
    std::array<int, 2> step; // of the brief run, by the journal
    bool inTwoWays;

    [[nodiscard]] bool PutsBack() const { return order == nullptr; }

    [[nodiscard]] bool Creates() const { return !PutsBack() && *order != '\0'; }
};

std::size_t Index(Journal journal) { return journal == Journal::WriteAhead ? 0 : 1; }

const char* After(const FaultKind& kind, const Work& work, bool second) {
    return (work.Creates() ? Created : kind.afterwards).at(second ? 1 : 0);
}

// Leaves a node half saved.
void Halve(Journal journal, const Scene& scene) {
    Child saver;
    saver.Ask("load");
    saver.Ask(journal == Journal::WriteAhead ? "arm kill 30" : "arm kill 150");
    saver.Tell("save 1 " + std::to_string(scene.Rows()));
    saver.AwaitEnd();
}

// A report has to say where and what.
void RequireReport(Row& row, const std::string& answer) {
    if (answer == "saved" || answer.starts_with("put back")) {
        return;
    }
    const bool reported = answer.starts_with("failed ") || answer.starts_with("saved but ");
    if (!reported || answer.find("NewDB.mdb") == std::string::npos) {
        row.Wrong(answer);
    }
    row.told += answer.starts_with("failed ") ? 1 : 0;
}

// Lets one write after the other of a work meet the fault, until it comes to its end without.
void BreakEveryWrite(Row& row, Extent extent, Scene& scene, Journal journal, const FaultKind& kind,
                     const Work& work, bool second) {
    const bool kills = kind.words == std::string_view("kill");
    const int step = extent.Of(kills ? 1 : 3, work.step.at(Index(journal)) * (kills ? 1 : 3));
    const std::string order =
        work.PutsBack() ? "put back" : "save 1 " + std::to_string(scene.Rows()) + work.order;
    bool met = true;
    for (int write = 1; met; write += step) {
        ++row.tries;
        scene.Reset();
        if (work.PutsBack()) {
            Halve(journal, scene);
        }
        // The store is open elsewhere all the time: a reader stands in it where that keeps nobody from
        // writing, or comes again and again.
        std::optional<Child> reader;
        if (kills && second && !work.Creates()) {
            reader.emplace().Ask(journal == Journal::WriteAhead ? "read" : "keep reading");
        }
        Child window;
        if (!work.PutsBack()) {
            window.Ask("load");
        }
        window.Ask(std::string("arm ") + kind.words + ' ' + std::to_string(write) +
                   (kind.lasting ? " lasting" : ""));
        window.Tell(order);
        if (const auto answer = window.Hear()) {
            met = !kills && std::stoi(window.Ask("count")) >= write;
            RequireReport(row, *answer);
            if (!kills && second) {
                window.Ask("disarm");
                const std::string mended = window.Ask("put back");
                row.putBack += mended == "put back 1" ? 1 : 0;
                row.asBefore -= mended == "put back 1" && !work.Creates() ? 1 : 0;
                if (!mended.starts_with("put back")) {
                    row.Wrong(mended);
                }
            }
            window.Quit();
        } else {
            window.AwaitEnd();
        }
        if (work.Creates()) {
            scene.JudgeCreations(row, !second);
        } else {
            scene.Judge(row);
        }
    }
}

void BreakAll(Extent extent, const Tell& tell, const Work& work, const char* before = nullptr) {
    for (const Journal journal : Journals) {
        for (const FaultKind& kind : Kinds) {
            for (const bool second : {false, true}) {
                if ((second && !work.inTwoWays) || !(extent.atLength || kind.brief.at(Index(journal)))) {
                    continue;
                }
                Row row(std::string(kind.name) + ' ' + work.name + ", " + NameOf(journal) +
                        (work.inTwoWays ? After(kind, work, second) : ""));
                Scene scene(journal, work.rows);
                if (before != nullptr) {
                    scene.Reset();
                    scene.Execute(before);
                    scene.Keep();
                }
                BreakEveryWrite(row, extent, scene, journal, kind, work, second);
                tell(row);
            }
        }
    }
}

} // namespace

void BreakSaves(Extent extent, const Tell& tell) {
    BreakAll(extent, tell, {"in a save", "", 20, {9, 31}, true});
}

void BreakPutBacks(Extent extent, const Tell& tell) {
    BreakAll(extent, tell, {"while a node is put back", nullptr, 20, {13, 13}, false});
}

void BreakCreations(Extent extent, const Tell& tell) {
    BreakAll(extent, tell, {"while missing nodes are created", " create", 4, {41, 151}, true});
}

void BreakFirstSaves(Extent extent, const Tell& tell) {
    BreakAll(extent, tell, {"in the first save of another program's store", "", 20, {13, 61}, false},
             "DROP TABLE Node_AUTO_Version; DROP TABLE Node_Creation");
}

} // namespace KAL_AUTO_Node
