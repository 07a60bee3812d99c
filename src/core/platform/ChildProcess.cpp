#include "platform/ChildProcess.h"

#include "platform/Confinement.h"
#include "platform/RuntimeError.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

constexpr std::chrono::milliseconds BetweenLooks(5);

[[noreturn]] void FailStart(const std::string& program, int error) {
    throw RuntimeError(error == ENOENT ? ErrorNumber::StoreNotFound : ErrorNumber::StoreFailure,
                       "'" + program + "' cannot be started: " + std::generic_category().message(error));
}

// In the new process: nothing but system calls. Returns why the program could not take its place.
int Become(const ChildStart& start, char* const* arguments, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (getppid() != parent) {
        return ESRCH;
    }
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int file = 0; file < static_cast<int>(start.files.size()); ++file) {
        const int given = start.files[static_cast<std::size_t>(file)];
        if (dup2(given < 0 ? nowhere : given, file) < 0) {
            return errno;
        }
    }
    for (const auto& [resource, most] : start.limits) {
        const rlimit limit{most, most};
        setrlimit(static_cast<__rlimit_resource>(resource), &limit);
    }
    Confine(start.onlyReads ? Confinement::Reading : Confinement::None);
    char* const nothing[] = {nullptr};
    execvpe(start.program.c_str(), arguments, start.hasEnvironment ? environ : nothing);
    return errno;
}

} // namespace

ChildProcess::ChildProcess(const ChildStart& start) {
    std::vector<char*> arguments = {const_cast<char*>(start.program.c_str())};
    for (const std::string& argument : start.arguments) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    // Closed where the program starts; else it tells why it does not.
    std::array<int, 2> failing{};
    if (pipe2(failing.data(), O_CLOEXEC) != 0) {
        FailStart(start.program, errno);
    }
    const pid_t self = getpid();
    process_ = fork();
    if (process_ == 0) {
        const int why = Become(start, arguments.data(), self);
        static_cast<void>(!write(failing[1], &why, sizeof why));
        _exit(1);
    }
    int why = process_ < 0 ? errno : 0;
    close(failing[1]);
    while (process_ > 0 && read(failing[0], &why, sizeof why) < 0 && errno == EINTR) {
    }
    close(failing[0]);
    if (why != 0) {
        End();
        FailStart(start.program, why);
    }
}

ChildProcess::~ChildProcess() { End(); }

std::optional<int> ChildProcess::Look(int options) {
    int status = 0;
    while (process_ > 0 && !status_) {
        const pid_t ended = waitpid(process_, &status, options);
        if (ended == process_) {
            status_ = status;
        } else if (ended == 0) {
            break;
        } else if (errno != EINTR) {
            status_ = 0; // somebody else has waited for it
        }
    }
    return status_;
}

std::optional<int> ChildProcess::WaitFor(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (!Look(WNOHANG)) {
        const auto left = end - std::chrono::steady_clock::now();
        if (left <= left.zero()) {
            break;
        }
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(left, BetweenLooks));
    }
    return status_;
}

int ChildProcess::End() {
    if (process_ > 0 && !Look(WNOHANG)) {
        kill(process_, SIGKILL);
        Look(0);
    }
    return status_.value_or(0);
}

} // namespace KAL_AUTO_Node
