#include "platform/Confinement.h"

#include <algorithm>
#include <array>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

// As the kernel takes it; the headers that a system has may be older than its kernel. What is named here and
// not allowed by a rule is forbidden.
struct LandlockRules {
    std::uint64_t files;
    std::uint64_t network;
    std::uint64_t scopes;
};

constexpr std::uint32_t AskVersion = 1;

constexpr std::uint64_t Bits(unsigned count) { return (std::uint64_t{1} << count) - 1; }

// Executing a file, reading one, reading a folder.
constexpr std::uint64_t ReadingFiles = 1U << 0U | 1U << 2U | 1U << 3U;

// The kinds of access to files that each version knows, from 1.
constexpr std::array<unsigned, 5> FileAccesses = {13, 14, 15, 15, 16};

} // namespace

bool Confine(Confinement confinement) noexcept {
    if (confinement == Confinement::None) {
        return true;
    }
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    const long version = syscall(SYS_landlock_create_ruleset, nullptr, 0, AskVersion);
    if (version < 1) {
        return false;
    }
    const auto known = std::min(static_cast<std::size_t>(version), FileAccesses.size());
    LandlockRules rules{Bits(FileAccesses[known - 1]), version >= 4 ? Bits(2) : 0,
                        version >= 6 ? Bits(2) : 0};
    if (confinement == Confinement::Reading) {
        rules.files &= ~ReadingFiles;
    }
    const auto set = static_cast<int>(syscall(SYS_landlock_create_ruleset, &rules, sizeof rules, 0));
    const bool held = set >= 0 && syscall(SYS_landlock_restrict_self, set, 0) == 0;
    close(set);
    return held;
}

} // namespace KAL_AUTO_Node
