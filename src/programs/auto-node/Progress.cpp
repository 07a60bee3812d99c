#include "auto-node/Progress.h"

#include "auto-node/Table.h"
#include "platform/VisibleText.h"

#include <csignal>
#include <iostream>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

constexpr std::chrono::seconds BeforeFirst(1);
constexpr std::chrono::milliseconds BetweenTexts(100);

} // namespace

Progress::Progress(std::string what) : next_(begun_ + BeforeFirst), text_(std::move(what)) {
    if (isatty(STDERR_FILENO) == 0) {
        return;
    }
    // Whoever ends the process means its first thread, which may have something to take away before.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    writer_ = std::thread([this] { Write(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Progress::~Progress() {
    if (writer_.joinable()) {
        {
            const std::scoped_lock lock(mutex_);
            over_ = true;
        }
        ended_.notify_one();
        writer_.join();
    }
}

bool Progress::IsDue() {
    const auto now = Clock::now();
    if (now < next_ || !writer_.joinable()) {
        return false;
    }
    next_ = now + BetweenTexts;
    return true;
}

void Progress::Tell(std::string text) {
    const std::scoped_lock lock(mutex_);
    text_ = std::move(text);
    counts_ = true;
}

void Progress::Write() {
    std::unique_lock lock(mutex_);
    bool shown = false;
    for (auto next = begun_ + BeforeFirst; !ended_.wait_until(lock, next, [this] { return over_; });
         next += BetweenTexts) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begun_).count();
        const std::string text =
            counts_ ? text_ : text_ + ": " + Counted(static_cast<std::size_t>(seconds), "second");
        std::cerr << '\r' << Visible(text) << "\x1b[K" << std::flush;
        shown = true;
    }
    if (shown) {
        std::cerr << "\r\x1b[K" << std::flush;
    }
}

} // namespace KAL_AUTO_Node
