#include "Child.h"

#include "Actor.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace KAL_AUTO_Node {

Child::Child(World world) {
    std::array<int, 2> orders{};
    std::array<int, 2> answers{};
    if (pipe2(orders.data(), O_CLOEXEC) != 0 || pipe2(answers.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    std::cout << std::flush; // or the child writes it, too
    process_ = fork();
    if (process_ == 0) {
        dup2(orders[0], STDIN_FILENO);
        dup2(answers[1], STDOUT_FILENO);
        const std::string self = std::filesystem::read_symlink("/proc/self/exe");
        // A boot of its own, and no identity at all.
        const std::string machine =
            "cat /proc/sys/kernel/random/uuid >/tmp/boot.$$ && mount --bind /tmp/boot.$$ "
            "/proc/sys/kernel/random/boot_id; rm -f /tmp/boot.$$; exec \"$0\" actor";
        if (world == World::Here) {
            // As it is: nothing of a store is open yet. It ends with this process at the latest.
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            _exit(Act());
        }
        if (world == World::OwnProcesses) {
            execlp("unshare", "unshare", "--pid", "--fork", "--kill-child", "--mount-proc", self.c_str(),
                   "actor", nullptr);
        } else {
            execlp("unshare", "unshare", "--pid", "--fork", "--kill-child", "--mount-proc", "sh", "-c",
                   machine.c_str(), self.c_str(), nullptr);
        }
        _exit(127);
    }
    close(orders[0]);
    close(answers[1]);
    orders_ = orders[1];
    answers_ = fdopen(answers[0], "r");
    if (process_ < 0) {
        throw std::runtime_error("no process");
    }
}

Child::~Child() {
    close(orders_);
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    std::fclose(answers_);
}

void Child::Tell(const std::string& order) {
    const std::string line = order + '\n';
    // One that has ended meanwhile is noticed where its answer is missing.
    static_cast<void>(write(orders_, line.data(), line.size()) < 0);
}

std::optional<std::string> Child::Hear() {
    char* line = nullptr;
    std::size_t capacity = 0;
    const ssize_t length = getline(&line, &capacity, answers_);
    std::optional<std::string> answer;
    if (length > 0) {
        answer.emplace(line, static_cast<std::size_t>(length - 1));
    }
    std::free(line);
    return answer;
}

std::string Child::Ask(const std::string& order) {
    Tell(order);
    return Hear().value_or("(ended)");
}

void Child::AwaitEnd() {
    siginfo_t how{};
    waitid(P_PID, static_cast<id_t>(process_), &how, WEXITED | WNOWAIT);
}

void Child::Quit() {
    Tell("quit");
    AwaitEnd();
}

} // namespace KAL_AUTO_Node
