#include "Cases.h"
#include "Scene.h"
#include "audit/PartitionCheck.h"
#include "exchange/ExchangeImport.h"
#include "exchange/Export.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <span>
#include <sys/wait.h>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

std::atomic<std::size_t> allocations = 0;
std::atomic<std::size_t> failing = 0; // the one of that number

#ifdef __SANITIZE_ADDRESS__

constexpr bool Possible = false; // the sanitizer allocates

#else

constexpr bool Possible = true;

// Of every library that is loaded.
template <class Allocate>
void* Counted(Allocate allocate) {
    if (++allocations != failing) {
        return allocate();
    }
    errno = ENOMEM;
    return nullptr;
}

extern "C" {

void* __libc_malloc(std::size_t size) noexcept;
void* __libc_calloc(std::size_t items, std::size_t size) noexcept;
void* __libc_realloc(void* old, std::size_t size) noexcept;

__attribute__((visibility("default"))) void* malloc(std::size_t size) noexcept {
    return Counted([&] { return __libc_malloc(size); });
}

__attribute__((visibility("default"))) void* calloc(std::size_t items, std::size_t size) noexcept {
    return Counted([&] { return __libc_calloc(items, size); });
}

__attribute__((visibility("default"))) void* realloc(void* old, std::size_t size) noexcept {
    return Counted([&] { return __libc_realloc(old, size); });
}
}

#endif

enum class End { Whole, Told, NotReached, Died };

// In a process of its own, which may end where no memory is left even to tell so, but never by a wrong
// access.
End EndOf(const std::function<void()>& work, std::size_t at) {
    const pid_t child = fork();
    if (child == 0) {
        static_cast<void>(std::freopen("/dev/null", "w", stderr));
        End end = End::Whole;
        allocations = 0;
        failing = at;
        try {
            work();
        } catch (const std::exception&) {
            end = End::Told;
        }
        _exit(static_cast<int>(allocations < at ? End::NotReached : end));
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status) && WTERMSIG(status) != SIGABRT) {
        throw std::runtime_error("allocation " + std::to_string(at) + ": ended by signal " +
                                 std::to_string(WTERMSIG(status)));
    }
    return WIFSIGNALED(status) ? End::Died : static_cast<End>(WEXITSTATUS(status));
}

struct Work {
    const char* name;
    int rows;
    bool changes;
    int step; // of the brief run
    std::function<void(const Scene&)> take;
};

void FailEach(Row& row, const Work& work, Scene& scene, int step) {
    const auto exported = scene.Folder() / "export";
    std::size_t at = 1;
    for (End end = End::Whole; row.Good() || row.tries == 0; at += static_cast<std::size_t>(step)) {
        scene.Reset();
        std::filesystem::remove(exported);
        end = EndOf([&] { work.take(scene); }, at);
        if (end == End::NotReached) {
            break;
        }
        ++row.tries;
        row.told += end == End::Told ? 1 : 0;
        const bool whole = Saver(Place).Read() == IntendedContent(scene.Before(), 1, scene.Rows());
        if (work.changes ? end == End::Whole && !whole : whole) {
            row.Lost("allocation " + std::to_string(at) + ": said to be done");
        }
        if (std::filesystem::exists(exported) && std::filesystem::file_size(exported) < 10'000) {
            row.Lost("half an export");
        }
        scene.Judge(row);
    }
    row.remarks = "of " + std::to_string(at - 1);
}

} // namespace

void FailAllocations(Extent extent, const Tell& tell) {
    const auto quiet = [](const auto&...) {};
    const Work works[] = {{"load and save", 60, true, 397,
                           [](const Scene& scene) {
                               Saver saver(Place);
                               const AutoNode loaded = saver.Load();
                               if (saver.Save(Intended(loaded, 1, scene.Rows()))) {
                                   throw std::runtime_error("refused");
                               }
                           }},
                          {"import", 200, true, 3997,
                           [&](const Scene& scene) {
                               DataBase dataBase;
                               static_cast<void>(
                                   ImportExchange(dataBase, scene.Folder() / "saved", Import::Carry, quiet));
                           }},
                          {"check and export", 60, false, 3997, [](const Scene& scene) {
                               DataBase dataBase;
                               History history(dataBase);
                               static_cast<void>(CheckPartition(dataBase, history, Place.partition));
                               Export(dataBase, Place.partition, scene.Folder() / "export");
                           }}};
    for (const Journal journal : Journals) {
        for (const Work& work : Possible ? std::span(works) : std::span<const Work>()) {
            Row row(std::string("an allocation fails in ") + work.name + " of " + std::to_string(work.rows) +
                    " rows, " + NameOf(journal));
            Scene scene(journal, work.rows);
            scene.Reset();
            works[0].take(scene);
            {
                DataBase dataBase;
                Export(dataBase, Place.partition, scene.Folder() / "saved");
            }
            FailEach(row, work, scene, extent.Of(1, work.step));
            tell(row);
        }
    }
}

} // namespace KAL_AUTO_Node
