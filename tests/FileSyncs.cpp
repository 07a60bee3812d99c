#include "FileSyncs.h"

#include <sqlite3.h>

#include <map>

namespace KAL_AUTO_Node {

namespace {

FileSyncs counts;

// An open file: the engine's own methods, and the same with an xSync that adds to a count.
struct Counted {
    const sqlite3_io_methods* plain;
    sqlite3_io_methods counting;
    int* count;
};

std::map<sqlite3_file*, Counted> files;
sqlite3_vfs countingSystem{};

int Sync(sqlite3_file* file, int flags) {
    ++*files.at(file).count;
    return files.at(file).plain->xSync(file, flags);
}

int Open(sqlite3_vfs* /*system*/, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
    sqlite3_vfs* const system = sqlite3_vfs_find("unix");
    const int result = system->xOpen(system, name, file, flags, outFlags);
    if (result == SQLITE_OK) {
        int& count = flags & SQLITE_OPEN_WAL       ? counts.log
                     : flags & SQLITE_OPEN_MAIN_DB ? counts.database
                                                   : counts.other;
        Counted& counted = files[file] = {file->pMethods, *file->pMethods, &count};
        counted.counting.xSync = &Sync;
        file->pMethods = &counted.counting;
    }
    return result;
}

} // namespace

void StartCountingSyncs() {
    countingSystem = *sqlite3_vfs_find(nullptr);
    countingSystem.zName = "counting";
    countingSystem.xOpen = &Open;
    sqlite3_vfs_register(&countingSystem, 1);
}

FileSyncs SyncsOf(const std::function<void()>& work) {
    counts = {};
    work();
    return counts;
}

} // namespace KAL_AUTO_Node
