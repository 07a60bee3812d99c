#include "FileSyncs.h"

#include <sqlite3.h>

#include <array>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

enum Kind : std::size_t { Log, DatabaseFile, Other, KindCount };

std::array<int, KindCount> counts{};

// The engine's own file methods, and the same with a counting xSync, for each kind of file.
std::array<const sqlite3_io_methods*, KindCount> plain{};
std::array<sqlite3_io_methods, KindCount> counting{};

template <Kind kind>
int Sync(sqlite3_file* file, int flags) {
    ++counts[kind];
    return plain[kind]->xSync(file, flags);
}

template <Kind kind>
void Count(sqlite3_file* file) {
    if (plain[kind] == nullptr) {
        plain[kind] = file->pMethods;
        counting[kind] = *file->pMethods;
        counting[kind].xSync = &Sync<kind>;
    }
    if (file->pMethods == plain[kind]) {
        file->pMethods = &counting[kind];
    }
}

sqlite3_vfs system_{};
sqlite3_vfs countingSystem{};

int Open(sqlite3_vfs* /*system*/, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
    const int result = system_.xOpen(&system_, name, file, flags, outFlags);
    if (result == SQLITE_OK) {
        if (flags & SQLITE_OPEN_WAL) {
            Count<Log>(file);
        } else if (flags & SQLITE_OPEN_MAIN_DB) {
            Count<DatabaseFile>(file);
        } else {
            Count<Other>(file);
        }
    }
    return result;
}

} // namespace

void StartCountingSyncs() {
    system_ = *sqlite3_vfs_find(nullptr);
    countingSystem = system_;
    countingSystem.zName = "counting";
    countingSystem.xOpen = &Open;
    sqlite3_vfs_register(&countingSystem, 1);
}

FileSyncs SyncsOf(const std::function<void()>& work) {
    counts = {};
    work();
    return {counts[Log], counts[DatabaseFile], counts[Other]};
}

} // namespace KAL_AUTO_Node
