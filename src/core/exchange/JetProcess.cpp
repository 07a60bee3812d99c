#include "exchange/JetProcess.h"

#include "exchange/JetFrames.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

using namespace std::chrono_literals;

// Reading takes a second for some 50 MiB and little more memory than a page and a row; these are what only a
// file can take that leads the library astray.
constexpr rlim_t MostMemory = rlim_t{512} << 20U;
constexpr rlim_t LeastSeconds = 3;
constexpr rlim_t MebibytesPerSecond = 4;
// Of waiting for the program, on a machine that is busy with other things.
constexpr int WaitPerSecondOfWork = 4;

constexpr int CannotStart = 127;

[[noreturn]] void Fail(const std::string& why) { throw std::runtime_error(why); }

void Limit(int resource, rlim_t most) {
    const rlimit limit{most, most};
    setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

// The program and the end of the pipe that it writes to.
class ReaderProcess {
  public:
    ReaderProcess(const std::filesystem::path& program, const std::filesystem::path& file,
                  const std::vector<std::string>& tables)
        : seconds_(LeastSeconds + (std::filesystem::file_size(file) >> 20U) / MebibytesPerSecond),
          patience_(std::chrono::seconds(seconds_) * WaitPerSecondOfWork) {
        // A name that begins with a dash would be none to the program.
        const std::string path = std::filesystem::absolute(file).string();
        std::vector<char*> arguments = {const_cast<char*>(program.c_str()), const_cast<char*>(path.c_str())};
        for (const std::string& table : tables) {
            arguments.push_back(const_cast<char*>(table.c_str()));
        }
        arguments.push_back(nullptr);
        std::array<int, 2> pipe{};
        if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "cannot start its reader");
        }
        output_ = pipe[0];
        process_ = fork();
        if (process_ == 0) {
            Become(pipe[1], arguments);
        }
        const int failure = errno;
        close(pipe[1]);
        if (process_ < 0) {
            close(output_);
            throw std::system_error(failure, std::generic_category(), "cannot start its reader");
        }
    }

    ~ReaderProcess() {
        close(output_);
        if (process_ > 0) {
            kill(process_, SIGKILL);
            Reap();
        }
    }

    ReaderProcess(const ReaderProcess&) = delete;
    ReaderProcess& operator=(const ReaderProcess&) = delete;

    std::size_t Read(std::span<char> buffer) {
        Wait();
        ssize_t got = 0;
        do {
            got = read(output_, buffer.data(), buffer.size());
        } while (got < 0 && errno == EINTR);
        if (got < 0) {
            throw std::system_error(errno, std::generic_category(), "cannot hear its reader");
        }
        return static_cast<std::size_t>(got);
    }

    // Why the stream ended before its end, told by how the program did.
    [[noreturn]] void ExplainEnd(const std::string& otherwise) {
        // One that only closed its output is no better.
        kill(process_, SIGKILL);
        const int status = Reap();
        if (WIFEXITED(status) && WEXITSTATUS(status) == CannotStart) {
            Fail("its reader cannot be started");
        }
        if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU) {
            Fail("its reader came to no end; the file is damaged");
        }
        if (WIFSIGNALED(status) && WTERMSIG(status) != SIGKILL) {
            Fail(std::string("its reader crashed over it (") + strsignal(WTERMSIG(status)) +
                 "); the file is damaged");
        }
        Fail(otherwise + "; the file is damaged");
    }

  private:
    // In the new process: nothing but system calls.
    [[noreturn]] void Become(int output, std::vector<char*>& arguments) const {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
        dup2(nowhere, STDIN_FILENO);
        dup2(nowhere, STDERR_FILENO);
        dup2(output, STDOUT_FILENO);
        Limit(RLIMIT_CORE, 0);
        Limit(RLIMIT_FSIZE, 0);
        Limit(RLIMIT_CPU, seconds_);
#ifndef __SANITIZE_ADDRESS__
        Limit(RLIMIT_AS, MostMemory);
#endif
        // Nothing in the environment changes how the file is read.
        std::array<char*, 1> environment{};
        execve(arguments[0], arguments.data(), environment.data());
        _exit(CannotStart);
    }

    void Wait() {
        const auto begun = std::chrono::steady_clock::now();
        pollfd waited{output_, POLLIN, 0};
        const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(patience_);
        const int ready = poll(&waited, 1, static_cast<int>(milliseconds.count()));
        patience_ -= std::chrono::steady_clock::now() - begun;
        if (ready == 0 || patience_ <= 0s) {
            Fail("its reader came to no end; the file is damaged");
        }
    }

    int Reap() {
        int status = 0;
        while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
        }
        process_ = 0;
        return status;
    }

    rlim_t seconds_;
    std::chrono::steady_clock::duration patience_; // left, of waiting
    int output_ = -1;
    pid_t process_ = 0;
};

// What goes wrong in the sink is nothing of the file's.
class Foreign : public JetSink {
  public:
    explicit Foreign(JetSink& sink) : sink_(sink) {}

    void TakeTable(const JetTable& table) override {
        Guard([&] { sink_.TakeTable(table); });
    }

    void TakeRow(std::span<const JetValue> row) override {
        Guard([&] { sink_.TakeRow(row); });
    }

    void TakeEndOfTable(std::uint32_t unreadableRows) override {
        Guard([&] { sink_.TakeEndOfTable(unreadableRows); });
    }

    [[nodiscard]] std::exception_ptr Failure() const { return failure_; }

  private:
    template <class Use>
    void Guard(Use use) {
        try {
            use();
        } catch (...) {
            failure_ = std::current_exception();
            throw;
        }
    }

    JetSink& sink_;
    std::exception_ptr failure_;
};

} // namespace

void RunJetReader(const std::filesystem::path& program, const std::filesystem::path& file,
                  const std::vector<std::string>& tables, JetSink& sink) {
    Foreign guarded(sink);
    try {
        ReaderProcess reader(program, file, tables);
        bool ended = false;
        const auto read = [&](std::span<char> buffer) {
            const std::size_t got = reader.Read(buffer);
            ended = got == 0;
            return got;
        };
        try {
            ReadJetFrames(read, guarded);
        } catch (const std::runtime_error& error) {
            if (ended && !guarded.Failure()) {
                reader.ExplainEnd(error.what());
            }
            throw;
        }
    } catch (const std::runtime_error& error) {
        if (guarded.Failure()) {
            std::rethrow_exception(guarded.Failure());
        }
        throw RuntimeError(ErrorNumber::StoreNotRecognized,
                           "Cannot bring over '" + file.string() + "': " + Visible(error.what()));
    }
}

} // namespace KAL_AUTO_Node
