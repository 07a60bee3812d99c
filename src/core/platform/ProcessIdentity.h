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
    // Tells the process from a later one of the same number, on this host.
    std::string start;

    friend bool operator==(const ProcessIdentity&, const ProcessIdentity&) = default;
};

[[nodiscard]] ProcessIdentity ThisProcess();

[[nodiscard]] std::string HostName();

// Whether a process of this host, told by number and start, still runs.
[[nodiscard]] bool IsRunning(std::int64_t process, const std::string& start);

} // namespace KAL_AUTO_Node
