#pragma once

#include <cstdint>
#include <string>

namespace KAL_AUTO_Node {

// Who works here, for others to see.
struct ProcessIdentity {
    std::string user;
    std::string host;
    std::string program;
    std::int64_t process = 0;
    // Tells the process from a later one of the same number, on the same machine.
    std::string start;
    // Where that number counts: names of hosts are given twice. Empty where it is not known.
    std::string machine;

    friend bool operator==(const ProcessIdentity&, const ProcessIdentity&) = default;
};

[[nodiscard]] ProcessIdentity ThisProcess();

[[nodiscard]] std::string HostName();

// Whether a process, told by its machine, number and start, has ended for certain. Of another machine, and of
// processes that cannot be seen from here, nobody can tell; but that none outlives its machine's boot.
[[nodiscard]] bool HasSurelyEnded(const ProcessIdentity& process, std::int64_t lastSeenSeconds);

} // namespace KAL_AUTO_Node
