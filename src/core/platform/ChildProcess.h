#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// How a program is started.
struct ChildStart {
    std::string program; // a path, or a name that is looked for in $PATH
    std::vector<std::string> arguments;
    // Descriptors of its standard input, output and errors; -1 for nowhere.
    std::array<int, 3> files = {-1, -1, -1};
    // Of setrlimit's: the resource and the most of it.
    std::vector<std::pair<int, std::uint64_t>> limits;
    bool hasEnvironment = true;
    // As far as the kernel has what holds it to that; it has to open and read what it is made of.
    bool onlyReads = false;
};

// A program that works for this one, as a process of its own: what it does to itself costs a message. It ends
// with this object at the latest, and with this process, however that ends.
class ChildProcess {
  public:
    // Raises StoreNotFound where there is no such program, StoreFailure where it cannot be started.
    explicit ChildProcess(const ChildStart& start);
    ~ChildProcess();

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Its status as waitpid gives it; nothing where it still runs then.
    [[nodiscard]] std::optional<int> WaitFor(std::chrono::milliseconds time);
    // Ends it; its status, which is its own where it had ended by then.
    int End();

  private:
    std::optional<int> Look(int options);

    pid_t process_ = 0;
    std::optional<int> status_;
};

} // namespace KAL_AUTO_Node
