// Tells what is in a Jet file, for auto-node import, through its standard output: auto-node-jet FILE TABLE...
// Runs under limits and, once it has opened the file, in a cage, as the library that reads such files can be
// led astray by a damaged one.

#include "auto-node-jet/Cage.h"
#include "auto-node-jet/JetFile.h"
#include "exchange/JetFrames.h"
#include "platform/FoldCase.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace {

// The library prints what it thinks of a file, and nothing of that may get among the frames.
int TakeOutput() {
    const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (output < 0 || nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0 || dup2(nowhere, STDERR_FILENO) < 0) {
        throw std::system_error(errno, std::generic_category());
    }
    // Without a buffer, for which it would ask what kind of file that is.
    static_cast<void>(std::setvbuf(stdout, nullptr, _IONBF, 0));
    return output;
}

void WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category());
        }
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

// Whether there is one.
bool EnterCage() {
#ifdef __SANITIZE_ADDRESS__
    return true; // it looks for leaks at the end, through files and a process
#else
    KAL_AUTO_Node::LimitDescriptors();
    const bool filesSealed = KAL_AUTO_Node::SealFiles();
    return KAL_AUTO_Node::SealCalls() || filesSealed;
#endif
}

} // namespace

int main(int argc, char** argv) {
    using namespace KAL_AUTO_Node;
    if (argc < 2) {
        std::cerr << "auto-node-jet: is started by auto-node import\n";
        return 2;
    }
    try {
        const int output = TakeOutput();
        JetFrameWriter writer([output](std::string_view bytes) { WriteAll(output, bytes); });
        try {
            std::set<std::string> wanted;
            for (int i = 2; i < argc; ++i) {
                wanted.insert(FoldAscii(argv[i]));
            }
            JetFile file(argv[1]);
            if (!EnterCage()) {
                writer.TakeRemark(
                    "the file was read without a cage, which this system's kernel does not give");
            }
            file.Tell(wanted, writer);
            writer.End();
        } catch (const std::runtime_error& error) {
            writer.Fail(error.what());
        }
    } catch (const std::exception&) {
        return 1; // nobody listens any more
    }
    return 0;
}
