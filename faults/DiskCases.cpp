#include "Cases.h"
#include "Child.h"
#include "Scene.h"

#include <chrono>
#include <fstream>
#include <optional>
#include <sched.h>
#include <sstream>
#include <sys/mount.h>
#include <sys/wait.h>
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

// In a process of its own, whose mounts nobody else sees. Returns what it has to tell.
std::string OnSmallDisk(const std::filesystem::path& folder, const std::function<void(std::ostream&)>& work) {
    std::array<int, 2> told{};
    if (pipe(told.data()) != 0) {
        return "no pipe";
    }
    const pid_t process = fork();
    if (process == 0) {
        std::ostringstream out;
        if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", folder.c_str(), "tmpfs", 0, "size=4m") != 0) {
            out << "no file system may be mounted";
        } else {
            try {
                work(out);
            } catch (const std::exception& error) {
                out << error.what();
            }
        }
        const std::string text = out.str();
        static_cast<void>(write(told[1], text.data(), text.size()) < 0);
        _exit(0);
    }
    close(told[1]);
    std::string text;
    for (char byte = 0; read(told[0], &byte, 1) == 1;) {
        text += byte;
    }
    close(told[0]);
    waitpid(process, nullptr, 0);
    return text;
}

// Takes the disk's space but for some.
void Fill(const std::filesystem::path& file, std::uintmax_t left) {
    const auto free = std::filesystem::space(file.parent_path()).available;
    std::ofstream filler(file);
    const std::string block(4096, 'x');
    for (auto rest = free - std::min(free, left); rest >= block.size(); rest -= block.size()) {
        filler << block;
    }
}

void SaveOnFullDisk(Row& row, Scene& scene, std::uintmax_t left, bool here) {
    ++row.tries;
    scene.Reset();
    const auto filler = scene.File().parent_path() / "filler";
    {
        Child window;
        window.Ask("load");
        Fill(filler, left);
        const std::string answer = window.Ask(Order(scene));
        if (answer != "saved") {
            RequireTold(row, answer, "NewDB.mdb");
        }
        if (!here) {
            window.Quit();
        }
        std::filesystem::remove(filler);
        if (const std::string mended = here ? window.Ask("put back") : ""; mended == "put back 1") {
            ++row.putBack;
            --row.asBefore;
        } else if (mended.starts_with("failed")) {
            row.Wrong(mended);
        }
        scene.Judge(row);
    }
}

std::string Numbers(const Row& row) {
    std::ostringstream out;
    out << "row " << row.tries << ' ' << row.asBefore << ' ' << row.whole << ' ' << row.putBack << ' '
        << row.told << ' ' << row.lost << ' ' << row.unseen << ' ' << row.wrong << ' ' << row.first;
    return out.str();
}

} // namespace

void FillDisks(Extent extent, const Tell& tell) {
    for (const Journal journal : Journals) {
        for (const bool here : {true, false}) {
            Row row(std::string("disk full at every size, ") + NameOf(journal) +
                    (here ? ", opened again there" : ", opened by another"));
            const TemporaryFolder disk;
            std::istringstream told(OnSmallDisk(disk.Path(), [&](std::ostream& out) {
                const EnvironmentVariable folder("TMPDIR");
                folder.Set(disk.Path().string());
                Scene scene(journal, 60);
                for (std::uintmax_t left = 0; left <= 768 * 1024;
                     left += static_cast<std::uintmax_t>(extent.Of(12288, 196608))) {
                    SaveOnFullDisk(row, scene, left, here);
                }
                out << Numbers(row);
            }));
            std::string begins;
            told >> begins >> row.tries >> row.asBefore >> row.whole >> row.putBack >> row.told >> row.lost >>
                row.unseen >> row.wrong;
            std::getline(told >> std::ws, row.first);
            if (begins != "row") {
                row.skipped = begins == "no";
                row.remarks = told.str();
            }
            tell(row);
        }
    }
}

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
             {Kind{"a lock shorter than the wait, before a save", 300, "", true},
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

void MoveFiles(Extent /*extent*/, const Tell& tell) {
    for (const Journal journal : Journals) {
        for (const bool replaced : {true, false}) {
            Row row(std::string("the file is ") + (replaced ? "replaced" : "deleted") +
                    " between load and save, " + NameOf(journal));
            Scene scene(journal);
            scene.Reset();
            ++row.tries;
            const auto other = scene.File().string() + ".new";
            Child window;
            window.Ask("load");
            if (replaced) {
                std::filesystem::copy_file(scene.Original(), other);
                std::filesystem::rename(other, scene.File());
            } else {
                std::filesystem::remove(scene.File());
            }
            const std::string answer = window.Ask(Order(scene));
            RequireTold(row, answer, "NewDB.mdb");
            window.Quit();
            if (replaced) {
                scene.Judge(row);
            } else if (std::filesystem::exists(scene.File())) {
                row.Wrong("the file is there again");
            } else {
                ++row.asBefore;
            }
            tell(row);
        }
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
            const auto protect = [&](std::filesystem::perm_options how) {
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
