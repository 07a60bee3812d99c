#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>

namespace KAL_AUTO_Node {
namespace {

// Of a command that gets the signal once there is something in a file; another tells the process that it
// started.
int StatusAfter(const std::string& signal, const std::string& command, const std::string& file,
                const std::string& child) {
    const std::string script =
        command + " & for i in {1..1000}; do [ -s " + file +
        " ] && break; read started </proc/$!/task/$!/children; [ $started ] && echo $started >" + child +
        "; sleep 0.01; done; kill -" + signal + " $!; wait $! 2>&-";
    return WEXITSTATUS(std::system(("bash -c 'set -m; " + script + "' 2>&1").c_str()));
}

TEST(Interruption, LeavesNothingOfWhatIsHalfMade) {
    const TestStore store;
    store.Execute("WITH RECURSIVE Numbers (Number) AS (VALUES (100) UNION ALL SELECT Number + 1 FROM Numbers "
                  "WHERE Number < 200000) INSERT INTO Detail_AUTO_Action SELECT 1, 3, Number, 0, 1, 1, '1', "
                  "'1', 'MSG' FROM Numbers");
    // Programs that end by themselves after a minute, beside a copy of ours.
    const std::string programs = (store.Folder() / "programs/").string();
    const std::string here = (store.Folder() / "here/").string();
    std::filesystem::create_directory(programs);
    std::filesystem::copy_file(AUTO_NODE, programs + "auto-node");
    for (const char* name : {"dot", "auto-node-jet"}) {
        std::ofstream(programs + name) << "#!/bin/sh\nexec sleep 60\n";
        std::filesystem::permissions(programs + name, std::filesystem::perms::owner_all);
    }
    const EnvironmentVariable path("PATH");
    path.Set(programs + ":/usr/bin:/bin");
    for (const auto& [signal, status] : {std::pair("INT", 130), {"TERM", 143}}) {
        for (const auto& [command, file] :
             {std::pair("graph 1 2 -o " + here + "out.svg", programs + "told"),
              {"report 1 2 " + here + "out.html", programs + "told"},
              {"import " TEST_DATA "/NewDB.mdb --into " + here + "out", here + "out.new"},
              {"export " + here + "out", here + "out.new"}}) {
            std::filesystem::create_directory(here);
            EXPECT_EQ(StatusAfter(signal, programs + "auto-node " + command, file, programs + "told"), status)
                << command;
            EXPECT_TRUE(std::filesystem::remove(here)) << command;
            pid_t child = 0;
            if (std::ifstream(programs + "told") >> child) {
                EXPECT_EQ(kill(child, 0), -1) << "still runs: " << command;
            }
            EXPECT_TRUE(std::filesystem::remove(programs + "told") || !command.starts_with("graph"));
        }
    }
}

} // namespace
} // namespace KAL_AUTO_Node
