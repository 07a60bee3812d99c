#include "Cases.h"
#include "Child.h"
#include "Scene.h"

#include <chrono>
#include <optional>
#include <thread>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

std::string Order(const Scene& scene) { return "save 1 " + std::to_string(scene.Rows()); }

// The saver was told what kept it from saving.
void RequireTold(Row& row, const std::string& answer, const std::string& part) {
    if (answer.starts_with("failed ") && answer.find(part) != std::string::npos) {
        ++row.told;
    } else {
        row.Unseen(answer);
    }
}

} // namespace

void LockStores(Extent extent, const Tell& tell) {
    struct Kind {
        const char* name;
        int milliseconds;
        const char* hold; // of the saver, at its question
        bool brief;       // also of the brief run, with a write-ahead log
    };

    constexpr int forEver = 600'000; // until its owner is killed
    for (const Journal journal : Journals) {
        for (const auto& [name, milliseconds, hold, brief] :
             {Kind{"a lock shorter than the wait, before a save", 100, "", true},
              Kind{"a lock longer than the wait, before a save", forEver, "", false},
              Kind{"a lock longer than the wait, before the rows are written", forEver, " hold", true}}) {
            if (!extent.atLength && !(brief && journal == Journal::WriteAhead)) {
                continue;
            }
            Row row(std::string(name) + ", " + NameOf(journal));
            Scene scene(journal);
            scene.Reset();
            ++row.tries;
            Child window;
            std::optional<Child> other(std::in_place);
            window.Ask("load");
            if (*hold != '\0') {
                window.Ask(Order(scene) + hold);
            }
            other->Ask("lock " + std::to_string(milliseconds));
            const std::string answer = window.Ask(Order(scene));
            if (milliseconds == forEver) {
                RequireTold(row, answer, "locked");
            } else if (answer != "saved") {
                row.Wrong(answer);
            }
            other.reset();
            window.Ask("put back");
            scene.Judge(row);
            tell(row);
        }
    }
    for (const Journal journal : Journals) {
        if (!extent.atLength && journal == Journal::Rollback) {
            continue;
        }
        Row row(std::string("locks longer than the wait amid a save, ") + NameOf(journal));
        Scene scene(journal, 1000);
        for (int write = 25; write <= extent.Of(825, 25); write += 80) {
            ++row.tries;
            scene.Reset();
            Child window;
            std::optional<Child> other(std::in_place);
            window.Ask("load");
            window.Ask("arm pause " + std::to_string(write));
            window.Ask(Order(scene));
            other->Tell("lock " + std::to_string(forEver));
            // It looks for the lock again every few milliseconds.
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            const std::string answer = window.Ask("go on");
            if (answer != "saved") {
                RequireTold(row, answer, "locked");
            }
            other.reset();
            if (window.Ask("put back") == "put back 1") {
                ++row.putBack;
                --row.asBefore;
            }
            scene.Judge(row);
        }
        tell(row);
    }
}

void ProtectFiles(Extent /*extent*/, const Tell& tell) {
    enum What { File, Folder, FileAndFolder };

    struct Kind {
        const char* name;
        What what;
        bool loadedBefore;
    };

    for (const Journal journal : Journals) {
        for (const auto& [name, what, loadedBefore] :
             {Kind{"the file is made read-only between load and save", File, true},
              Kind{"its folder is made read-only between load and save", Folder, true},
              Kind{"file and folder are read-only from the start", FileAndFolder, false}}) {
            Row row(std::string(name) + ", " + NameOf(journal));
            Scene scene(journal);
            scene.Reset();
            ++row.tries;
            const auto folder = scene.File().parent_path();
            Child window;
            if (geteuid() == 0) {
                for (auto path = scene.File(); path != scene.Folder().parent_path();
                     path = path.parent_path()) {
                    static_cast<void>(chown(path.c_str(), 65534, 65534));
                }
                if (window.Ask("be nobody") != "nobody") {
                    row.skipped = true;
                    row.remarks = "root's rights cannot be dropped";
                }
            }
            using std::filesystem::perms;
            const auto protect = [&, what = what](std::filesystem::perm_options how) {
                if (what != Folder) {
                    std::filesystem::permissions(scene.File(), perms::owner_write, how);
                }
                if (what != File) {
                    std::filesystem::permissions(folder, perms::owner_write, how);
                }
            };
            if (loadedBefore) {
                window.Ask("load");
            }
            protect(std::filesystem::perm_options::remove);
            const std::string loaded = loadedBefore ? "loaded" : window.Ask("load");
            const std::string answer = loaded == "loaded" ? window.Ask(Order(scene)) : loaded;
            // One that has the file open already may go on.
            if (answer != "saved") {
                RequireTold(row, answer, "NewDB.mdb");
            } else if (!loadedBefore) {
                row.Unseen(answer);
            }
            window.Quit();
            protect(std::filesystem::perm_options::add);
            row.remarks += answer == "saved" ? "saved" : answer.substr(0, answer.find(", file"));
            scene.Judge(row);
            tell(row);
        }
    }
}

} // namespace KAL_AUTO_Node
