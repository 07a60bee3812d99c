#include "diagram/Graphviz.h"

#include "platform/VisibleText.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>
#include <spawn.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

// Inches of 96 pixels. What is larger is made smaller: few programs show more pixels, and their compression
// takes far longer than the layout.
constexpr const char* PixelSize = "-Gsize=72,72";

using Clock = std::chrono::steady_clock;

[[noreturn]] void Fail(int error, const char* what) {
    throw std::system_error(error, std::generic_category(), what);
}

// A file without a name: a child that hangs or writes much never has to be waited for as with a pipe.
class Scratch {
  public:
    Scratch() : number_(memfd_create("auto-node", MFD_CLOEXEC)) {
        if (number_ < 0) {
            Fail(errno, "cannot make a file for dot");
        }
    }

    ~Scratch() { close(number_); }

    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] int Number() const { return number_; }

    void Write(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t written = write(number_, text.data(), text.size());
            if (written < 0) {
                Fail(errno, "cannot write for dot");
            }
            text.remove_prefix(static_cast<std::size_t>(written));
        }
        lseek(number_, 0, SEEK_SET);
    }

    [[nodiscard]] std::string Read() const {
        std::string text;
        std::array<char, 65536> part{};
        ssize_t length = 0;
        lseek(number_, 0, SEEK_SET);
        while ((length = read(number_, part.data(), part.size())) > 0) {
            text.append(part.data(), static_cast<std::size_t>(length));
        }
        return text;
    }

  private:
    int number_;
};

// The program dot, ended at the end of its life at the latest.
class Child {
  public:
    Child(const std::string& format, const Scratch& input, const Scratch& output, const Scratch& errors,
          std::chrono::seconds limit) {
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_adddup2(&files, input.Number(), STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&files, output.Number(), STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&files, errors.Number(), STDERR_FILENO);
        std::string name = "dot";
        std::string option = "-T";
        option += format;
        std::string size = PixelSize;
        std::array<char*, 4> arguments = {name.data(), option.data(), format == "png" ? size.data() : nullptr,
                                          nullptr};
        const int error = posix_spawnp(&process_, "dot", &files, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&files);
        if (error == ENOENT) {
            throw std::runtime_error("Graphviz's program dot is not installed");
        }
        if (error != 0) {
            Fail(error, "cannot start dot");
        }
        // Should this process be killed, the other one ends all the same.
        const auto seconds = static_cast<rlim_t>(limit.count() + 1);
        const rlimit processorTime = {seconds, seconds};
        prlimit(process_, RLIMIT_CPU, &processorTime, nullptr);
    }

    ~Child() {
        if (process_ > 0) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
    }

    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Its status as waitpid gives it; nothing where it still runs at that time.
    std::optional<int> WaitUntil(Clock::time_point end) {
        for (;;) {
            int status = 0;
            const pid_t ended = waitpid(process_, &status, WNOHANG);
            if (ended == process_) {
                process_ = 0;
                return status;
            }
            if (ended < 0 && errno != EINTR) {
                Fail(errno, "cannot wait for dot");
            }
            if (Clock::now() >= end) {
                return std::nullopt;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

  private:
    pid_t process_ = 0;
};

std::string FirstLines(const std::string& text) {
    constexpr std::size_t enough = 1000;
    std::string lines = text.substr(0, enough);
    lines.erase(lines.find_last_not_of('\n') + 1);
    return Visible(lines);
}

} // namespace

Picture DrawGraph(std::string_view graph, const std::string& format, std::chrono::seconds limit) {
    const Scratch input;
    const Scratch output;
    const Scratch errors;
    input.Write(graph);
    Child dot(format, input, output, errors, limit);
    const auto status = dot.WaitUntil(Clock::now() + limit);
    if (!status) {
        throw std::runtime_error("dot was ended, because it took longer than " +
                                 std::to_string(limit.count()) + " seconds");
    }
    if (WIFSIGNALED(*status)) {
        throw std::runtime_error(std::string("dot crashed: ") + strsignal(WTERMSIG(*status)));
    }
    Picture picture{output.Read(), FirstLines(errors.Read())};
    if (WEXITSTATUS(*status) != 0 || picture.bytes.empty()) {
        throw std::runtime_error("dot failed with status " + std::to_string(WEXITSTATUS(*status)) + ": " +
                                 picture.warnings);
    }
    return picture;
}

} // namespace KAL_AUTO_Node
