#include "auto-node-jet/Cage.h"

#include "platform/Confinement.h"

#include <fcntl.h>
#include <memory>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace KAL_AUTO_Node {

void LimitDescriptors() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_NOFILE, &none);
    setrlimit(RLIMIT_NPROC, &none);
}

bool SealFiles() { return Confine(Confinement::Nothing); }

bool SealCalls() {
    const std::unique_ptr<void, void (*)(void*)> filter(seccomp_init(SCMP_ACT_KILL_PROCESS),
                                                        &seccomp_release);
    bool whole = filter != nullptr;
    const auto allow = [&](int call, auto... conditions) {
        whole = whole && seccomp_rule_add(filter.get(), SCMP_ACT_ALLOW, call, sizeof...(conditions),
                                          conditions...) == 0;
    };
    // What it has open, of which only the pipe can be written to.
    for (const int call : {SCMP_SYS(read), SCMP_SYS(write), SCMP_SYS(writev), SCMP_SYS(lseek),
                           SCMP_SYS(_llseek), SCMP_SYS(fstat), SCMP_SYS(fstat64), SCMP_SYS(close)}) {
        allow(call);
    }
    // Reading a stream asks for its file's size so, where descriptors are.
    for (const int call : {SCMP_SYS(newfstatat), SCMP_SYS(fstatat64)}) {
        allow(call, SCMP_A3(SCMP_CMP_EQ, AT_EMPTY_PATH));
    }
    for (const int call : {SCMP_SYS(brk), SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(madvise)}) {
        allow(call);
    }
    for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mmap2), SCMP_SYS(mprotect)}) {
        allow(call, SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0));
    }
    for (const int call :
         {SCMP_SYS(futex), SCMP_SYS(getrandom), SCMP_SYS(clock_gettime), SCMP_SYS(gettid), SCMP_SYS(getpid),
          SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn), SCMP_SYS(restart_syscall),
          SCMP_SYS(exit), SCMP_SYS(exit_group)}) {
        allow(call);
    }
    // As abort does.
    allow(SCMP_SYS(tgkill), SCMP_A0(SCMP_CMP_EQ, static_cast<scmp_datum_t>(getpid())));
    return whole && seccomp_load(filter.get()) == 0;
}

} // namespace KAL_AUTO_Node
