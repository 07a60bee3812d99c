#include "exchange/JetProcess.h"

#include "exchange/JetFrames.h"
#include "platform/ChildProcess.h"
#include "platform/Interruption.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
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
constexpr rlim_t MebibytesPerSecond = 4;
// Of waiting for the program, on a machine that is busy with other things.
constexpr int WaitPerSecondOfWork = 4;

[[noreturn]] void FailReading(const std::string& why) {
    throw RuntimeError(ErrorNumber::StoreNotRecognized, why);
}

// The ends of a pipe, each open until it is closed.
struct Pipe {
    Pipe() {
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            FailReading("cannot hear its reader: " + std::generic_category().message(errno));
        }
    }

    ~Pipe() {
        CloseWritten();
        close(ends[0]);
    }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void CloseWritten() {
        if (const int end = std::exchange(ends[1], -1); end >= 0) {
            close(end);
        }
    }

    std::array<int, 2> ends{-1, -1};
};

// The program and the pipe that it writes to.
class ReaderProcess {
  public:
    ReaderProcess(const JetReader& reader, const std::filesystem::path& file,
                  const std::vector<std::string>& tables)
        : seconds_(reader.leastSeconds + (std::filesystem::file_size(file) >> 20U) / MebibytesPerSecond),
          patience_(std::chrono::seconds(seconds_) * WaitPerSecondOfWork),
          process_(StartOf(reader.program, file, tables)) {
        output_.CloseWritten();
    }

    std::size_t Read(std::span<char> buffer) {
        Wait();
        ssize_t got = 0;
        do {
            got = read(output_.ends[0], buffer.data(), buffer.size());
        } while (got < 0 && errno == EINTR);
        if (got < 0) {
            FailReading("cannot hear its reader: " + std::generic_category().message(errno));
        }
        return static_cast<std::size_t>(got);
    }

    // Why the stream ended before its end, told by how the program did.
    [[noreturn]] void ExplainEnd(const std::string& otherwise) {
        // One that only closed its output is no better; one that is ending has its own status in a moment.
        static_cast<void>(process_.WaitFor(100ms));
        const int status = process_.End();
        if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU) {
            FailReading("its reader came to no end; the file is damaged");
        }
        if (WIFSIGNALED(status) && WTERMSIG(status) == SIGSYS) {
            FailReading("its reader was led to do what it may not, and was ended; the file is damaged");
        }
        if (WIFSIGNALED(status) && WTERMSIG(status) != SIGKILL) {
            FailReading(std::string("its reader crashed over it (") + strsignal(WTERMSIG(status)) +
                        "); the file is damaged");
        }
        FailReading(otherwise + "; the file is damaged");
    }

  private:
    [[nodiscard]] ChildStart StartOf(const std::filesystem::path& program, const std::filesystem::path& file,
                                     const std::vector<std::string>& tables) const {
        // A name that begins with a dash would be none to the program. Nothing in the environment changes how
        // the file is read.
        ChildStart start{program.string(),
                         {std::filesystem::absolute(file).string()},
                         {-1, output_.ends[1], -1},
                         {{RLIMIT_CORE, 0}, {RLIMIT_FSIZE, 0}, {RLIMIT_CPU, seconds_}},
                         false};
#ifndef __SANITIZE_ADDRESS__
        start.limits.emplace_back(RLIMIT_AS, MostMemory);
#endif
        start.arguments.insert(start.arguments.end(), tables.begin(), tables.end());
        return start;
    }

    void Wait() {
        constexpr auto betweenLooks = 200ms;
        pollfd waited{output_.ends[0], POLLIN, 0};
        for (;;) {
            const auto begun = std::chrono::steady_clock::now();
            const int ready = poll(&waited, 1, static_cast<int>(betweenLooks.count()));
            patience_ -= std::chrono::steady_clock::now() - begun;
            Interruption::Look();
            if (patience_ <= 0s) {
                FailReading("its reader came to no end; the file is damaged");
            }
            if (ready != 0) {
                return;
            }
        }
    }

    rlim_t seconds_;
    std::chrono::steady_clock::duration patience_; // left, of waiting
    Pipe output_;
    ChildProcess process_;
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

    void TakeRemark(std::string_view remark) override {
        Guard([&] { sink_.TakeRemark(remark); });
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

void RunJetReader(const JetReader& reader, const std::filesystem::path& file,
                  const std::vector<std::string>& tables, JetSink& sink) {
    Foreign guarded(sink);
    try {
        ReaderProcess process(reader, file, tables);
        bool ended = false;
        const auto read = [&](std::span<char> buffer) {
            const std::size_t got = process.Read(buffer);
            ended = got == 0;
            return got;
        };
        try {
            ReadJetFrames(read, guarded);
        } catch (const std::runtime_error& error) {
            if (ended && !guarded.Failure()) {
                process.ExplainEnd(error.what());
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
