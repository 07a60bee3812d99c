#pragma once

namespace KAL_AUTO_Node {

// Three walls, none of which needs the others. What they stop cannot be taken back: this process has what it
// has open, computes, gets memory and ends.

// Whatever the kernel: no further descriptor, and no process but for a privileged user.
void LimitDescriptors();
// Whether the kernel keeps it from files, programs and TCP (Landlock).
bool SealFiles();
// Whether the kernel ends it (SIGSYS) where it calls for anything else (seccomp).
bool SealCalls();

} // namespace KAL_AUTO_Node
