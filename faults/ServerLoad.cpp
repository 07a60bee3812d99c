// Many people at once on one server: each process loads and saves a node of its own, over and over, as a
// window does. Afterwards every node has to hold what its own last save wrote, and the history every save
// that was finished. ServerLoad [SECONDS [PROCESSES]]

#include "Saver.h"
#include "TestServerProcess.h"
#include "platform/RuntimeError.h"
#include "store/CreateServerStore.h"

#include <chrono>
#include <fstream>
#include <iostream>
#include <sys/wait.h>

namespace KAL_AUTO_Node {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int FirstNode = 1000;

NodePlace PlaceOf(int editor) { return {{1, 2}, static_cast<std::int16_t>(FirstNode + editor)}; }

// Prints how many saves were finished, and the last one's number.
int Edit(const std::filesystem::path& link, int editor, Clock::time_point end) {
    Saver saver(link, PlaceOf(editor));
    int saves = 0;
    while (Clock::now() < end) {
        if (saver.Save(Intended(saver.Load(), saves + 1, 20))) {
            throw std::logic_error("something stands in the way of a save");
        }
        ++saves;
    }
    std::ofstream(link.string() + '.' + std::to_string(editor)) << saves;
    return 0;
}

int Run(int seconds, int editors) {
    const TemporaryFolder folder;
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0755));
    const TestServerProcess server(folder.Path() / "server");
    const auto link = folder.Path() / "link";
    CreateServerStore(link, server.Address(), StoreContent::Demo);
    const std::string copies = "generate_series(" + std::to_string(FirstNode) + ", " +
                               std::to_string(FirstNode + editors - 1) + ") AS copy";
    TestDatabase::Run(server.Address(),
                      "INSERT INTO Node_General_Pool SELECT 1, 2, 9, copy, 'AUTO', 'Copy', 'then' FROM " +
                          copies);
    for (const auto& [table, key] : {std::pair{"Node_AUTO", "NodeNumber"},
                                     {"Detail_AUTO_Prompts", "NodeMasterID"},
                                     {"Detail_AUTO_Action", "NodeMasterID"}}) {
        TestDatabase::Run(server.Address(), std::string("CREATE TEMP TABLE made AS SELECT * FROM ") + table +
                                                " WHERE PartID = 2 AND " + key +
                                                " = 8; DO $$ BEGIN FOR copy IN " + std::to_string(FirstNode) +
                                                ".." + std::to_string(FirstNode + editors - 1) +
                                                " LOOP UPDATE made SET " + key + " = copy; INSERT INTO " +
                                                table + " SELECT * FROM made; END LOOP; END $$");
    }

    const auto end = Clock::now() + std::chrono::seconds(seconds);
    std::vector<pid_t> processes;
    for (int editor = 0; editor < editors; ++editor) {
        processes.push_back(fork());
        if (processes.back() == 0) {
            try {
                _exit(Edit(link, editor, end));
            } catch (const std::exception& error) {
                std::cerr << "editor " << editor << ": " << error.what() << std::endl;
                _exit(1);
            }
        }
    }
    int failed = 0;
    for (const pid_t process : processes) {
        int status = 0;
        failed += waitpid(process, &status, 0) == process && status == 0 ? 0 : 1;
    }

    const AutoNode before = Saver(link, {{1, 2}, 8}).Load();
    long long saves = 0;
    int wrong = 0;
    for (int editor = 0; editor < editors; ++editor) {
        int own = 0;
        std::ifstream(link.string() + '.' + std::to_string(editor)) >> own;
        saves += own;
        const NodePlace place = PlaceOf(editor);
        Saver saver(link, place);
        const auto versions = saver.Versions().Versions(place);
        wrong += own > 0 && saver.Load() == Intended(before, own, 20) && !versions.empty() &&
                         versions.front().number == own && versions.front().state == VersionState::Finished
                     ? 0
                     : 1;
    }
    std::cout << editors << " editors, " << seconds << " s: " << saves << " loads and saves ("
              << saves / std::max(seconds, 1) << " a second), " << failed << " failed, " << wrong
              << " nodes wrong\n";
    return failed + wrong == 0 ? 0 : 1;
}

} // namespace
} // namespace KAL_AUTO_Node

int main(int argc, char** argv) {
    try {
        return KAL_AUTO_Node::Run(argc > 1 ? std::atoi(argv[1]) : 3, argc > 2 ? std::atoi(argv[2]) : 50);
    } catch (const std::exception& error) {
        std::cerr << "ServerLoad: " << error.what() << '\n';
        return 1;
    }
}
