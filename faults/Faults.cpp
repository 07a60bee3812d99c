// What becomes of the node of a store when a save of it is killed, fails, meets another or loses its file.
// Prints a row a case, and fails where anything was lost or passed unseen. Faults [brief|long [GROUP [SEED]]]

#include "Actor.h"
#include "Cases.h"
#include "HistoryModel.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <unistd.h>

namespace KAL_AUTO_Node {
namespace {

struct Group {
    const char* name;
    Case* run;
};

constexpr Group Groups[] = {{"saves", &BreakSaves},         {"put-backs", &BreakPutBacks},
                            {"creations", &BreakCreations}, {"first-saves", &BreakFirstSaves},
                            {"races", &RaceSaves},          {"take-overs", &TakeOverSaves},
                            {"locks", &LockStores},         {"late-answers", &AnswerLate},
                            {"histories", &RecordInFiles},  {"allocations", &FailAllocations},
                            {"planted", &PlantFaults},      {"read-only-files", &ProtectFiles}};

int Run(Extent extent, const std::string& group) {
    std::cout << "stores in " << std::filesystem::temp_directory_path().string() << '\n';
    PrintHead(std::cout);
    bool good = true;
    int rows = 0;
    for (const auto& [name, run] : Groups) {
        if (group.empty() || group == name) {
            run(extent, [&](const Row& row) {
                Print(std::cout, row);
                good &= row.Good();
                ++rows;
            });
        }
    }
    return good && rows > 0 ? 0 : 1;
}

} // namespace
} // namespace KAL_AUTO_Node

int main(int argc, char** argv) {
    using namespace KAL_AUTO_Node;
    const std::string role = argc > 1 ? argv[1] : "brief";
    if (role == "recorder" && argc == 7) {
        return Record(argv + 2);
    }
    if (argc > 4 || (role != "actor" && role != "brief" && role != "long")) {
        std::cerr << "Faults [brief|long [GROUP [SEED]]]\n";
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
        return Run({role == "long", argc > 3 ? static_cast<unsigned>(std::stoul(argv[3])) : 1},
                   argc > 2 ? argv[2] : "");
    } catch (const std::exception& error) {
        std::cerr << "Faults: " << error.what() << '\n';
        return 1;
    }
}
