#include "auto-node/Progress.h"

#include "platform/VisibleText.h"

#include <iostream>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

constexpr std::chrono::milliseconds BetweenTexts(100);

} // namespace

Progress::~Progress() {
    if (shown_) {
        Write("");
    }
}

bool Progress::IsDue() {
    const auto now = Clock::now();
    if (now < next_ || isatty(STDERR_FILENO) == 0) {
        return false;
    }
    next_ = now + BetweenTexts;
    return shown_ = true;
}

void Progress::Write(const std::string& text) {
    std::cerr << '\r' << Visible(text) << "\x1b[K" << std::flush;
}

} // namespace KAL_AUTO_Node
