#include "platform/confinement/Confinement.h"

#include <fcntl.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <new>

#include "platform/Error.h"

using namespace Qt::StringLiterals;

namespace kadrona::platform {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool Sanitized = true;
#elif defined(__has_feature)
constexpr bool Sanitized = __has_feature(address_sanitizer);
#else
constexpr bool Sanitized = false;
#endif

/// The kernel itself kills where `most` is exceeded by more than `grace`.
void Limit(decltype(RLIMIT_CORE) what, qint64 most, qint64 grace = 0) {
    rlimit limit{};
    (void)getrlimit(what, &limit);
    limit.rlim_cur = std::min(limit.rlim_cur, static_cast<rlim_t>(most));
    limit.rlim_max = std::min(limit.rlim_max, static_cast<rlim_t>(most + grace));
    (void)setrlimit(what, &limit);
}

/// In bytes.
qint64 AddressSpaceInUse() {
    qint64 pages = 0;
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen("/proc/self/statm", "re"),
                                                     std::fclose);
    if (!file || std::fscanf(file.get(), "%lld", &pages) != 1) {
        constexpr qint64 Usual = 300'000'000;  // no more than that by the libraries
        return Usual;
    }
    return pages * sysconf(_SC_PAGESIZE);
}

/// Of all users, for the limit counts those of all programs of one; 0 where that is not known.
qint64 ThreadsOfSystem() {
    int all = 0;
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen("/proc/loadavg", "re"),
                                                     std::fclose);
    return file && std::fscanf(file.get(), "%*f %*f %*f %*d/%d", &all) == 1 ? all : 0;
}

/// What reading, writing, memory, time and threads take.
constexpr std::array AllowedCalls{SCMP_SYS(read),
                                  SCMP_SYS(write),
                                  SCMP_SYS(close),
                                  SCMP_SYS(ftruncate),
                                  SCMP_SYS(munmap),
                                  SCMP_SYS(mremap),
                                  SCMP_SYS(madvise),
                                  SCMP_SYS(brk),
                                  SCMP_SYS(futex),
                                  SCMP_SYS(set_robust_list),
                                  SCMP_SYS(rseq),
                                  SCMP_SYS(gettid),
                                  SCMP_SYS(getpid),
                                  SCMP_SYS(sched_yield),
                                  SCMP_SYS(sched_getaffinity),
                                  SCMP_SYS(clock_gettime),
                                  SCMP_SYS(clock_getres),
                                  SCMP_SYS(clock_nanosleep),
                                  SCMP_SYS(nanosleep),
                                  SCMP_SYS(gettimeofday),
                                  SCMP_SYS(restart_syscall),
                                  SCMP_SYS(rt_sigaction),
                                  SCMP_SYS(rt_sigprocmask),
                                  SCMP_SYS(rt_sigreturn),
                                  SCMP_SYS(sigaltstack),
                                  SCMP_SYS(getrandom),
                                  SCMP_SYS(sysinfo),
                                  SCMP_SYS(eventfd2),  // each thread of the toolkit has one
                                  SCMP_SYS(exit),
                                  SCMP_SYS(exit_group)};
/// By these a sanitizer finds out whether it may read something.
constexpr std::array CallsOfSanitizers{SCMP_SYS(pipe), SCMP_SYS(pipe2)};

/// What is asked for is none, and only a kernel that has filters looks at it.
bool KernelHasFilters() {
    return prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, nullptr, 0, 0) == 0 ||
           (errno != EINVAL && errno != ENOSYS);
}

/// False where that fails.
bool FilterCalls() {
    const std::unique_ptr<void, void (*)(scmp_filter_ctx)> filter(
        seccomp_init(SCMP_ACT_ERRNO(EPERM)), seccomp_release);
    bool done = filter != nullptr;
    const auto add = [&](int call, std::initializer_list<scmp_arg_cmp> conditions = {},
                         quint32 action = SCMP_ACT_ALLOW) {
        done = done && seccomp_rule_add_array(filter.get(), action, call,
                                              static_cast<unsigned>(conditions.size()),
                                              conditions.begin()) == 0;
    };
    for (const int call : AllowedCalls) {
        add(call);
    }
    for (const int call : CallsOfSanitizers) {
        add(call, {}, Sanitized ? SCMP_ACT_ALLOW : SCMP_ACT_ERRNO(ENOSYS));
    }
    const scmp_arg_cmp notExecutable{2, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0};
    add(SCMP_SYS(mmap), {notExecutable});
    add(SCMP_SYS(mprotect), {notExecutable});
    add(SCMP_SYS(clone), {{0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD}});
    // What it asks with cannot be looked into; the C library then asks as before.
    add(SCMP_SYS(clone3), {}, SCMP_ACT_ERRNO(ENOSYS));
    add(SCMP_SYS(tgkill), {{0, SCMP_CMP_EQ, static_cast<scmp_datum_t>(getpid()), 0}});
    // Libraries may have begun threads when they were loaded.
    return done && seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1) == 0 &&
           seccomp_load(filter.get()) == 0;
}

/// What Confine() has left; 0 before, and where memory is unbounded.
qint64& MemoryLeft() {
    static qint64 left = 0;
    return left;
}

}  // namespace

void BindToStarter() {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    Limit(RLIMIT_CORE, 0);
    if (!Sanitized) {
        (void)prctl(PR_SET_DUMPABLE, 0);  // nor is a core handed to who collects them
    }
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int stream = 0; stream <= (Sanitized ? 1 : 2); ++stream) {
        if (nowhere < 0 || dup2(nowhere, stream) < 0) {
            close(stream);
        }
    }
    if (nowhere > STDERR_FILENO) {
        close(nowhere);
    }
}

void Confine(const ProcessLimits& limits) {
    constexpr int MostFiles = 256;  // as many as threads, and a few
    constexpr int MostThreads = 64;
    std::signal(SIGXFSZ, SIG_IGN);  // a call that fails says more
    Limit(RLIMIT_FSIZE, limits.file);
    Limit(RLIMIT_CPU, limits.seconds, 1);
    Limit(RLIMIT_NOFILE, MostFiles);
    if (const qint64 running = ThreadsOfSystem()) {
        Limit(RLIMIT_NPROC, running + MostThreads);
    }
    if (!Sanitized) {
        const qint64 before = AddressSpaceInUse();
        Limit(RLIMIT_AS, before + limits.memory);
        rlimit limit{};  // the process may have had a lower one
        (void)getrlimit(RLIMIT_AS, &limit);
        MemoryLeft() = static_cast<qint64>(limit.rlim_cur) - before;
    }
    (void)prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    if (!FilterCalls() && KernelHasFilters()) {
        throw Error(u"Der Leser lässt sich nicht absichern. So wird kein fremdes Bild gelesen."_s);
    }
}

/// Limits can no longer be changed, but what is reserved and never used counts, too.
void BoundMemory(qint64 bytes) {
    static void* reserved = MAP_FAILED;
    static size_t size = 0;
    if (reserved != MAP_FAILED) {
        munmap(reserved, size);
        reserved = MAP_FAILED;
    }
    if (bytes >= MemoryLeft()) {
        return;
    }
    size = static_cast<size_t>(MemoryLeft() - bytes);
    reserved = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (reserved == MAP_FAILED) {
        throw std::bad_alloc();
    }
}

}  // namespace kadrona::platform
