#include "auto-node-jet/Cage.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace KAL_AUTO_Node {
namespace {

// What a reader may not do, and which walls stop it beside the one that stops all.
struct Forbidden {
    const char* name;
    std::function<long()> call;
    bool byFiles = false;
    bool byLimits = false;
};

TEST(JetCage, StopsAllThatAReaderHasNoUseFor) {
    const TemporaryFolder folder;
    const std::string made = folder.Path() / "made";
    const int udp = socket(AF_INET, SOCK_DGRAM, 0);
    const pid_t parent = getpid();
    const Forbidden all[] = {
        {"reads a file", [] { return open("/etc/passwd", O_RDONLY); }, true, true},
        {"makes a file", [&] { return open(made.c_str(), O_CREAT | O_WRONLY, 0600); }, true, true},
        {"reads a folder", [] { return open("/", O_RDONLY | O_DIRECTORY); }, true, true},
        {"renames", [&] { return rename(made.c_str(), made.c_str()); }, true},
        {"changes rights", [&] { return chmod(made.c_str(), 0600); }},
        {"has a descriptor more", [] { return dup(0); }, false, true},
        {"makes a socket", [] { return socket(AF_INET, SOCK_STREAM, 0); }, false, true},
        {"connects",
         [udp] {
             const sockaddr anywhere{AF_UNSPEC, {}};
             return connect(udp, &anywhere, sizeof anywhere);
         }},
        {"starts a program", [] { return execl("/bin/true", "true", nullptr); }, true},
        {"starts a process",
         [] {
             const pid_t child = fork();
             child == 0 ? _exit(0) : static_cast<void>(child);
             return child;
         },
         false, geteuid() != 0},
        {"signals its parent", [parent] { return kill(parent, 0); }},
        {"signals its thread", [parent] { return syscall(SYS_tgkill, parent, parent, 0); }},
        {"is traced", [] { return ptrace(PTRACE_TRACEME, 0, nullptr, nullptr); }},
        {"has code more",
         [] {
             return mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) ==
                            MAP_FAILED
                        ? -1
                        : 0;
         }},
    };
    constexpr int noWall = 3;
    const auto statusOf = [](const Forbidden& one, const std::function<bool()>& enter) {
        const pid_t child = fork();
        if (child == 0) {
            _exit(!enter() ? noWall : one.call() < 0 ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    };
    const auto failed = [](int status) { return WIFEXITED(status) && WEXITSTATUS(status) == 1; };
    const auto stopsNot = [](int status) { return WIFEXITED(status) && WEXITSTATUS(status) == noWall; };
    std::ofstream(made).flush();
    for (const Forbidden& one : all) {
        EXPECT_EQ(statusOf(one, [] { return true; }), 0) << one.name;
        const int called = statusOf(one, &SealCalls);
        EXPECT_TRUE(stopsNot(called) || (WIFSIGNALED(called) && WTERMSIG(called) == SIGSYS)) << one.name;
        const int opened = statusOf(one, &SealFiles);
        EXPECT_TRUE(stopsNot(opened) || !one.byFiles || failed(opened)) << one.name;
        const int limited = statusOf(one, [] { return LimitDescriptors(), true; });
        EXPECT_TRUE(!one.byLimits || failed(limited)) << one.name;
    }
    close(udp);
#ifndef __SANITIZE_ADDRESS__
    // The reader is in it while what it tells waits in a pipe.
    const std::string filters = stopsNot(statusOf(all[0], &SealCalls)) ? "0" : "2";
    const std::string script =
        "sh -c 'echo $$; exec \"$0\" \"$@\"' " JET_READER " " TEST_DATA
        "/NewDB.mdb node_auto node_general_pool detail_auto_action node_msg | { read reader; cd "
        "/proc/$reader; "
        "timeout 20 sh -c 'until grep -q \"Max open files  *0 \" limits && grep -q NoNewPrivs:.1 status && "
        "grep -q Seccomp:." +
        filters + " status; do sleep 0.01; done'; }";
    EXPECT_EQ(std::system(script.c_str()), 0);
#endif
}

} // namespace
} // namespace KAL_AUTO_Node
