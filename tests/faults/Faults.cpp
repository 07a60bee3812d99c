// What becomes of the node of a store when a save of it is killed, fails, meets another or loses its file.
// Prints a row for each case, and fails where anything was lost or passed unseen. Faults [brief|long]

#include "Actor.h"
#include "Cases.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <unistd.h>

namespace KAL_AUTO_Node {
namespace {

int Run(Extent extent) {
    std::cout << "stores in " << std::filesystem::temp_directory_path().string() << '\n';
    PrintHead(std::cout);
    bool good = true;
    const Tell tell = [&](const Row& row) {
        Print(std::cout, row);
        good &= row.Good();
    };
    KillSaves(extent, tell);
    KillPutBacks(extent, tell);
    KillCreations(extent, tell);
    RaceSaves(extent, tell);
    TakeOverSaves(tell);
    FailWrites(extent, tell);
    FailWritesOfPutBacks(extent, tell);
    FailWritesOfCreations(extent, tell);
    FailFirstSaves(extent, tell);
    FillDisks(extent, tell);
    LockStores(extent, tell);
    MoveFiles(tell);
    ProtectFiles(tell);
    return good ? 0 : 1;
}

} // namespace
} // namespace KAL_AUTO_Node

int main(int argc, char** argv) {
    using namespace KAL_AUTO_Node;
    const std::string role = argc > 1 ? argv[1] : "brief";
    if (argc > 2 || (role != "actor" && role != "brief" && role != "long")) {
        std::cerr << "Faults [brief|long]\n";
        return 2;
    }
    try {
        if (role == "actor") {
            return Act();
        }
        // A child that has ended is noticed where its answer is missing.
        std::signal(SIGPIPE, SIG_IGN);
        // What a killed process has written is there without a disk, and several hundred times faster.
        if (access("/dev/shm", W_OK) == 0) {
            setenv("TMPDIR", "/dev/shm", 0);
        }
        return Run({role == "long"});
    } catch (const std::exception& error) {
        std::cerr << "Faults: " << error.what() << '\n';
        return 1;
    }
}
