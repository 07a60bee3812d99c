#include "diagram/Graphviz.h"

#include "platform/ChildProcess.h"
#include "platform/Counted.h"
#include "platform/Interruption.h"
#include "platform/RuntimeError.h"
#include "platform/VisibleText.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

// Inches of 96 pixels. What is larger is made smaller: few programs show more pixels, and their compression
// takes far longer than the layout.
constexpr const char* PixelSize = "-Gsize=72,72";

constexpr std::uint64_t MostFiles = 128;

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds BetweenLooks(50);

[[noreturn]] void Fail(int error, const std::string& what) {
    throw RuntimeError(ErrorNumber::StoreFailure, what + ": " + std::generic_category().message(error));
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

ChildStart StartOfDot(const std::string& format, std::array<int, 3> files, std::chrono::milliseconds limit) {
    ChildStart start{"dot", {"-T" + format}, files, {}};
    if (format == "png") {
        start.arguments.emplace_back(PixelSize);
    }
    // It loads fonts and plugins, and a thread for them, but writes only to what it is given.
    start.limits = {
        {RLIMIT_CPU, static_cast<std::uint64_t>(std::chrono::ceil<std::chrono::seconds>(limit).count() + 1)},
        {RLIMIT_CORE, 0},
        {RLIMIT_NOFILE, MostFiles}};
    start.onlyReads = true;
    return start;
}

int WaitForDot(const ChildStart& start, std::chrono::milliseconds limit, const Waiting& waiting) try {
    ChildProcess dot(start);
    const auto begun = Clock::now();
    for (;;) {
        if (const auto status = dot.WaitFor(BetweenLooks)) {
            return *status;
        }
        Interruption::Look();
        const auto lasting = Clock::now() - begun;
        if (lasting >= limit) {
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "dot was ended, because it took longer than " + CountedSeconds(limit));
        }
        waiting(std::chrono::duration_cast<std::chrono::seconds>(lasting));
    }

} catch (const RuntimeError& error) {

    if (error.Number() == ErrorNumber::StoreNotFound) {
        throw RuntimeError(error.Number(), "Graphviz's program dot is not installed");
    }
    throw;
}

std::string FirstLines(const std::string& text) {
    constexpr std::size_t enough = 1000;
    std::string lines = text.substr(0, enough);
    lines.erase(lines.find_last_not_of('\n') + 1);
    return Visible(lines);
}

} // namespace

Picture DrawGraph(std::string_view graph, const std::string& format, std::chrono::milliseconds limit,
                  const Waiting& waiting) {
    const Scratch input;
    const Scratch output;
    const Scratch errors;
    input.Write(graph);
    const int status = WaitForDot(
        StartOfDot(format, {input.Number(), output.Number(), errors.Number()}, limit), limit, waiting);
    if (WIFSIGNALED(status)) {
        throw RuntimeError(ErrorNumber::StoreFailure,
                           std::string("dot crashed: ") + strsignal(WTERMSIG(status)));
    }
    Picture picture{output.Read(), FirstLines(errors.Read())};
    if (WEXITSTATUS(status) != 0 || picture.bytes.empty()) {
        throw RuntimeError(ErrorNumber::StoreFailure, "dot failed with status " +
                                                          std::to_string(WEXITSTATUS(status)) + ": " +
                                                          picture.warnings);
    }
    return picture;
}

} // namespace KAL_AUTO_Node
