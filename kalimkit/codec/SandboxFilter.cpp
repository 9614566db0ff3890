#include "kalimkit/codec/SandboxFilter.h"

#include <linux/seccomp.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <type_traits>

#include "kalimkit/codec/SandboxMessages.h"

namespace kalim::codec {

namespace {

// Memory, the clock, threads and waiting for them, and the end.
constexpr std::array allowedCalls{
    SCMP_SYS(brk),
    SCMP_SYS(munmap),
    SCMP_SYS(mremap),
    SCMP_SYS(madvise),
    SCMP_SYS(futex),
    SCMP_SYS(sched_yield),
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(clock_gettime),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(getpid),
    SCMP_SYS(gettid),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(getrandom),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(sigaltstack),
    SCMP_SYS(pause),
    SCMP_SYS(ppoll),
    SCMP_SYS(rt_sigaction),
    SCMP_SYS(rseq),
    SCMP_SYS(set_robust_list),
    SCMP_SYS(sched_getaffinity),
};
// Asked for by libraries that go on without.
constexpr std::array refusedCalls{
    SCMP_SYS(open),  SCMP_SYS(openat),  SCMP_SYS(stat),      SCMP_SYS(newfstatat),
    SCMP_SYS(fstat), SCMP_SYS(access),  SCMP_SYS(read),      SCMP_SYS(readlink),
    SCMP_SYS(ioctl), SCMP_SYS(sysinfo), SCMP_SYS(prlimit64),
};
// A library may have threads of its own process do its work, but there is no other process. The
// older call tells in its first argument what is to be made; without the newer one, the system's
// library takes that.
bool addThreadRules(scmp_filter_ctx filter) {
    constexpr scmp_datum_t thread = CLONE_THREAD | CLONE_VM;
    const int call = SCMP_SYS(clone);
    seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0);
    return seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 1,
                            SCMP_A0(SCMP_CMP_MASKED_EQ, thread, thread)) == 0 &&
           seccomp_rule_add(filter, SCMP_ACT_ERRNO(EPERM), call, 1,
                            SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_THREAD, 0)) == 0;
}

using Filter = std::unique_ptr<std::remove_pointer_t<scmp_filter_ctx>, decltype(&seccomp_release)>;

bool addRules(scmp_filter_ctx filter) {
    // To say that it has finished.
    bool isWhole = seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(write), 0) == 0;
    for (const int call : allowedCalls)
        isWhole = isWhole && seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) == 0;
    for (const int call : {SCMP_SYS(pipe2), SCMP_SYS(close)})
        seccomp_rule_add(filter, isSanitized ? SCMP_ACT_ALLOW : SCMP_ACT_ERRNO(EPERM), call, 0);
    // Some of these are unknown to some processors.
    for (const int call : refusedCalls)
        seccomp_rule_add(filter, SCMP_ACT_ERRNO(EPERM), call, 0);
    isWhole = isWhole && addThreadRules(filter);
    // No memory becomes a program.
    for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mprotect)}) {
        isWhole = isWhole && seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 1,
                                              SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0)) == 0;
    }
    return isWhole;
}

}  // namespace

SandboxFilter::SandboxFilter() {
    const Filter filter(seccomp_init(SCMP_ACT_KILL_PROCESS), &seccomp_release);
    const int file = ::memfd_create("filter", MFD_CLOEXEC);
    if (filter && file >= 0 && addRules(filter.get()) &&
        seccomp_export_bpf(filter.get(), file) == 0) {
        _program.resize(static_cast<std::size_t>(::lseek(file, 0, SEEK_END)) / sizeof(sock_filter));
        const std::size_t size = _program.size() * sizeof(sock_filter);
        if (::pread(file, _program.data(), size, 0) != static_cast<ssize_t>(size)) _program.clear();
    }
    if (file >= 0) ::close(file);
}

bool SandboxFilter::protect() {
    if (_program.empty() || ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
    const sock_fprog program{static_cast<unsigned short>(_program.size()), _program.data()};
    return ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program, 0, 0) == 0;
}

}  // namespace kalim::codec
