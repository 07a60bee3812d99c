// Loaded before a program's other libraries: tells in a file the names of those that it syncs to disk.

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

int Tell(int file) {
    std::array<char, 4096> path{};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = readlink(link.c_str(), path.data(), path.size());
    const std::string name(path.data(), length < 0 ? 0 : static_cast<std::size_t>(length));
    const std::string line = name.substr(name.rfind('/') + 1) + ' ';
    const int told = open(std::getenv("KAL_SYNCS"), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    const bool done = write(told, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    close(told);
    return done ? static_cast<int>(syscall(SYS_fsync, file)) : -1;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int fsync(int file) { return Tell(file); }

extern "C" __attribute__((visibility("default"))) int fdatasync(int file) { return Tell(file); }
