#include "platform/ProcessIdentity.h"

#include <climits>

#include <array>
#include <cerrno>
#include <csignal>
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

std::string BootID() { return FirstLine("/proc/sys/kernel/random/boot_id"); }

// What a process number counts in: a boot of a machine and a name space of it. Of the machine all boots.
struct Machine {
    std::string boot;
    std::string space;
    std::string id;

    // Back from the text of Here.
    explicit Machine(const std::string& text) { std::istringstream(text) >> boot >> space >> id; }

    static std::string Here() {
        std::array<char, 64> space{};
        const bool known = readlink("/proc/self/ns/pid", space.data(), space.size() - 1) > 0;
        return known ? BootID() + ' ' + space.data() + ' ' + FirstLine("/etc/machine-id") : std::string();
    }
};

struct Life {
    enum { Gone, Unseen, Seen } how;

    std::string start; // of one that is seen: the boot of the machine and the moment in it
};

Life LifeOf(std::int64_t process) {
    if (kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH) {
        return {Life::Gone, {}};
    }
    const std::string status = FirstLine("/proc/" + std::to_string(process) + "/stat");
    // The program's name stands in brackets and may hold anything; the state is the first field after it, the
    // start the 20th. A process that has ended stays there until its parent has taken note.
    const auto end = status.rfind(')');
    if (end == std::string::npos) {
        return {Life::Unseen, {}}; // another user's, where those are hidden
    }
    std::istringstream fields(status.substr(end + 1));
    std::string field;
    for (int position = 0; position < 20; ++position) {
        fields >> field;
        if (position == 0 && (field == "Z" || field == "X")) {
            return {Life::Gone, {}};
        }
    }
    return {Life::Seen, BootID() + ' ' + field};
}

// When this machine began to run, in seconds since 1970; 0 where that is not known.
std::int64_t BootTime() {
    std::ifstream status("/proc/stat");
    for (std::string word; status >> word;) {
        std::int64_t seconds = 0;
        if (word == "btime" && status >> seconds) {
            return seconds;
        }
    }
    return 0;
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
    return {UserName(),     HostName(), program_invocation_short_name, process, LifeOf(process).start,
            Machine::Here()};
}

bool HasSurelyEnded(const ProcessIdentity& process, std::int64_t lastSeenSeconds) {
    const Machine here(Machine::Here());
    const Machine there(process.machine);
    if (here.space.empty() || there.space.empty()) {
        return false;
    }
    if (there.boot == here.boot) {
        const Life life = there.space == here.space ? LifeOf(process.process) : Life{Life::Unseen, {}};
        return life.how == Life::Gone || (life.how == Life::Seen && life.start != process.start);
    }
    // Machines that were copied have one identity, too: only what was before this boot is over with it.
    return !here.id.empty() && there.id == here.id && lastSeenSeconds < BootTime();
}

} // namespace KAL_AUTO_Node
