#include "platform/ProcessIdentity.h"

#include <climits>

#include <array>
#include <cerrno>
#include <fstream>
#include <pwd.h>
#include <sstream>
#include <unistd.h>

namespace KAL_AUTO_Node {

namespace {

std::string FirstLine(const std::string& file) {
    std::string line;
    std::ifstream stream(file);
    std::getline(stream, line);
    return line;
}

// The boot of the machine and the moment in it at which the process began; empty where there is none.
std::string StartOf(std::int64_t process) {
    const std::string status = FirstLine("/proc/" + std::to_string(process) + "/stat");
    // The program's name stands in brackets and may hold anything; the state is the first field after it, the
    // start the 20th. A process that has ended stays there until its parent has taken note.
    const auto end = status.rfind(')');
    if (end == std::string::npos) {
        return {};
    }
    std::istringstream fields(status.substr(end + 1));
    std::string field;
    for (int position = 0; position < 20; ++position) {
        fields >> field;
        if (position == 0 && (field == "Z" || field == "X")) {
            return {};
        }
    }
    return FirstLine("/proc/sys/kernel/random/boot_id") + ' ' + field;
}

std::string UserName() {
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    const uid_t user = geteuid();
    if (getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
        return found->pw_name;
    }
    return std::to_string(user);
}

} // namespace

std::string HostName() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "localhost";
}

ProcessIdentity ThisProcess() {
    const std::int64_t process = getpid();
    return {UserName(), HostName(), program_invocation_short_name, process, StartOf(process)};
}

bool IsRunning(std::int64_t process, const std::string& start) {
    return !start.empty() && StartOf(process) == start;
}

} // namespace KAL_AUTO_Node
