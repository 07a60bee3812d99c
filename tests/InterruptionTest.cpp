#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <sys/wait.h>
#include <thread>

namespace KAL_AUTO_Node {
namespace {

using std::filesystem::path;

// A program that tells its process and never ends by itself.
void WriteProgram(const path& program, const path& told) {
    std::ofstream(program) << "#!/bin/sh\necho $$ >" << told.string() << "\nexec /bin/sleep 60\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
}

// Of a run that is sent the signal once there is something in that file.
int StatusAfter(int signal, const std::vector<std::string>& arguments, const path& awaited) {
    std::vector<char*> words;
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        execv(words.front(), words.data());
        _exit(127);
    }
    std::error_code none;
    for (int tries = 0; tries < 10'000; ++tries) {
        if (const auto size = std::filesystem::file_size(awaited, none); !none && size > 0) {
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    kill(process, signal);
    int status = 0;
    waitpid(process, &status, 0);
    return status;
}

TEST(Interruption, LeavesNothingOfWhatIsHalfMade) {
    const TestStore store;
    store.Execute("WITH RECURSIVE Numbers (Number) AS (VALUES (100) UNION ALL SELECT Number + 1 FROM Numbers "
                  "WHERE Number < 200000) INSERT INTO Detail_AUTO_Action SELECT 1, 3, Number, 0, 1, 1, '1', "
                  "'1', 'MSG' FROM Numbers");
    const path folder = store.Folder() / "here";
    const path told = folder / "told";
    const std::string program = (folder / "auto-node").string();
    const EnvironmentVariable search("PATH");
    search.Set(folder.string() + ":/usr/bin:/bin");
    for (const int signal : {SIGINT, SIGTERM}) {
        for (const auto& [awaited, words] : std::vector<std::pair<path, std::vector<std::string>>>{
                 {told, {"graph", "1", "2", "-o", (folder / "out.svg").string()}},
                 {folder / "out.new",
                  {"import", TEST_DATA "/NewDB.mdb", "--into", (folder / "out").string()}},
                 {folder / "out.new", {"export", (folder / "out").string()}}}) {
            SCOPED_TRACE(words.front() + ", signal " + std::to_string(signal));
            std::filesystem::create_directory(folder);
            std::filesystem::copy_file(AUTO_NODE, program);
            WriteProgram(folder / "dot", told);
            WriteProgram(folder / "auto-node-jet", "/dev/null");
            std::vector<std::string> arguments = {program};
            arguments.insert(arguments.end(), words.begin(), words.end());
            const int status = StatusAfter(signal, arguments, awaited);
            EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
            pid_t child = 0;
            if (std::ifstream(told) >> child) {
                EXPECT_EQ(kill(child, 0), -1) << "still runs";
            }
            EXPECT_EQ(child > 0, awaited == told);
            for (const char* made : {"told", "dot", "auto-node-jet", "auto-node"}) {
                std::filesystem::remove(folder / made);
            }
            EXPECT_TRUE(std::filesystem::remove(folder)) << *std::filesystem::directory_iterator(folder);
        }
    }
}

} // namespace
} // namespace KAL_AUTO_Node
