#pragma once

#include <cstdint>

namespace KAL_AUTO_Node {

// What a process may still do with what it has not opened yet.
enum class Confinement : std::uint8_t {
    None,
    Reading, // it writes, makes and removes nothing, and neither listens nor connects over TCP
    Nothing  // nor does it open anything, or start a program
};

// Holds this process, and those that it starts, to that for good, and lets none of them get more rights than
// it has. Returns whether the kernel has what holds it (Landlock, since 5.13; TCP since 6.7). Nothing but
// system calls, as they are allowed between fork and exec.
bool Confine(Confinement confinement) noexcept;

} // namespace KAL_AUTO_Node
