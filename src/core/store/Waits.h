#pragma once

#include <atomic>
#include <chrono>

namespace KAL_AUTO_Node {

// How long one waits with a store; tests wait less.
struct Waits {
    // For another program's lock. Its write takes milliseconds; only a lock that lasts is worth reporting.
    std::chrono::milliseconds lock{1000};
    // For a command, which takes milliseconds. One that works for this long comes to no end: another program
    // can put a view or a trigger into the store that runs for ever.
    std::chrono::milliseconds work{10'000};
    // For another's save of the same node, which takes a fraction of a second. Two in a store whose
    // statements each wait for the disk keep each other waiting as well.
    std::chrono::milliseconds save{2000};
    // Where there is one, another thread sets it once nobody wants the answer any more: what runs then fails
    // soon. It outlives the connection.
    const std::atomic<bool>* unwanted = nullptr;

    [[nodiscard]] bool AreInVain() const { return unwanted != nullptr && *unwanted; }
};

} // namespace KAL_AUTO_Node
