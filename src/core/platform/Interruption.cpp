#include "platform/Interruption.h"

#include "platform/RuntimeError.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

constexpr int Ending[] = {SIGINT, SIGTERM};

} // namespace

Interruption::Interruption() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : Ending) {
        // One that is ignored, as a job in the background does with the first, ends nothing.
        struct sigaction now {};

        if (sigaction(signal, nullptr, &now) == 0 && now.sa_handler != SIG_IGN) {
            sigaddset(&ending, signal);
        }
    }
    pthread_sigmask(SIG_BLOCK, &ending, &before_);
}

Interruption::~Interruption() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

bool Interruption::IsWanted() {
    sigset_t pending;
    sigset_t blocked;
    sigpending(&pending);
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    return std::ranges::any_of(Ending, [&](int signal) {
        return sigismember(&pending, signal) == 1 && sigismember(&blocked, signal) == 1;
    });
}

void Interruption::Look() {
    if (IsWanted()) {
        throw RuntimeError(ErrorNumber::StoreFailure, "Interrupted");
    }
}

} // namespace KAL_AUTO_Node
