#include "testing/FaultySystem.h"

#include <sqlite3.h>

#include <csignal>
#include <map>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

struct Plan {
    bool armed = false;
    DiskFault fault = DiskFault::None;
    int at = 0;
    bool lasting = false;
    std::function<void()> pause;
    int writes = 0;
};

// An open file: the engine's own methods, and the same with faults and an xSync that adds to a count.
struct Faulty {
    const sqlite3_io_methods* plain;
    sqlite3_io_methods methods;
    int* syncs;
};

Plan plan;
FileSyncs counts;
std::map<sqlite3_file*, Faulty> files;
sqlite3_vfs faultySystem{};

sqlite3_vfs* System() { return sqlite3_vfs_find("unix"); }

// The code with which a write fails; SQLITE_OK where it may go on.
int Meet(int code, bool takesSpace) {
    if (!plan.armed) {
        return SQLITE_OK;
    }
    ++plan.writes;
    if (plan.lasting ? plan.writes < plan.at : plan.writes != plan.at) {
        return SQLITE_OK;
    }
    switch (plan.fault) {
    case DiskFault::Kill:
        raise(SIGKILL);
        return SQLITE_OK;
    case DiskFault::InputOutput:
        return code;
    case DiskFault::Full:
        return takesSpace ? SQLITE_FULL : SQLITE_OK;
    case DiskFault::Pause:
        plan.pause();
        return SQLITE_OK;
    case DiskFault::None:
        break;
    }
    return SQLITE_OK;
}

int Write(sqlite3_file* file, const void* bytes, int count, sqlite3_int64 offset) {
    const int met = Meet(SQLITE_IOERR_WRITE, true);
    return met != SQLITE_OK ? met : files.at(file).plain->xWrite(file, bytes, count, offset);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    const int met = Meet(SQLITE_IOERR_TRUNCATE, false);
    return met != SQLITE_OK ? met : files.at(file).plain->xTruncate(file, size);
}

int Sync(sqlite3_file* file, int flags) {
    ++*files.at(file).syncs;
    const int met = Meet(SQLITE_IOERR_FSYNC, false);
    return met != SQLITE_OK ? met : files.at(file).plain->xSync(file, flags);
}

int Delete(sqlite3_vfs* /*system*/, const char* name, int syncFolder) {
    const int met = Meet(SQLITE_IOERR_DELETE, false);
    return met != SQLITE_OK ? met : System()->xDelete(System(), name, syncFolder);
}

int Open(sqlite3_vfs* /*system*/, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
    const int result = System()->xOpen(System(), name, file, flags, outFlags);
    if (result == SQLITE_OK) {
        int& syncs = flags & SQLITE_OPEN_WAL       ? counts.log
                     : flags & SQLITE_OPEN_MAIN_DB ? counts.database
                                                   : counts.other;
        Faulty& faulty = files[file] = {file->pMethods, *file->pMethods, &syncs};
        faulty.methods.xWrite = &Write;
        faulty.methods.xTruncate = &Truncate;
        faulty.methods.xSync = &Sync;
        file->pMethods = &faulty.methods;
    }
    return result;
}

} // namespace

void StartFaultySystem() {
    faultySystem = *sqlite3_vfs_find(nullptr);
    faultySystem.zName = "faulty";
    faultySystem.xOpen = &Open;
    faultySystem.xDelete = &Delete;
    sqlite3_vfs_register(&faultySystem, 1);
}

FileSyncs SyncsOf(const std::function<void()>& work) {
    counts = {};
    work();
    return counts;
}

void Arm(DiskFault fault, int at, bool lasting, std::function<void()> pause) {
    plan = {true, fault, at, lasting, std::move(pause), 0};
}

void Disarm() { plan.armed = false; }

int WritesSinceArmed() { return plan.writes; }

} // namespace KAL_AUTO_Node
