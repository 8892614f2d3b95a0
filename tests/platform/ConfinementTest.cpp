#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <thread>

#include "platform/Error.h"
#include "platform/HelperProcess.h"
#include "platform/confinement/Confinement.h"

namespace kadrona::platform {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int Unlimited = 1;
#else
constexpr int Unlimited = 0;
#endif

/// Whether a step succeeds in a process of its own; its signal where it dies.
int Forked(const std::function<bool()>& step) {
    const pid_t process = fork();
    if (process == 0) {
        _exit(step() ? 1 : 0);
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

/// The same in one that is confined.
int Confined(const std::function<bool()>& step) {
    return Forked([&step] {
        Confine({.memory = 50'000'000, .file = 1'000'000, .seconds = 1});
        return step();
    });
}

/// As where whoever started this one has forbidden it filters.
bool GoesOnUnfiltered() {
    try {
        Confine({});
    } catch (const Error&) {
        return false;
    }
    return true;
}

bool Allocates(size_t bytes, int protection) {
    return mmap(nullptr, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED;
}

/// Each figure but the last by the way.
bool AllocatesAfter(std::initializer_list<qint64> bounds) {
    for (const qint64 bound : bounds) {
        BoundMemory(bound);
    }
    return Allocates(40'000'000, PROT_READ | PROT_WRITE);
}

bool StartsAThread() {
    std::thread([] {}).join();
    return true;
}

[[noreturn]] bool Aborts() {
    std::abort();
}

[[noreturn]] bool Spins() {
    for (volatile bool goesOn = true; goesOn;) {
    }
    _exit(0);
}

}  // namespace

TEST(ConfinementTest, LeavesWhatAComputationNeedsAndNothingElse) {
    static const int memory = memfd_create("test", MFD_CLOEXEC);
    std::array<int, 2> pipe{};
    char byte = 0;
    ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
    const struct {
        const char* what;
        int expected;
        std::function<bool()> step;
    } cases[]{
        {"writes", 1, [&] { return write(pipe[1], "x", 1) == 1; }},
        {"reads", 1, [&] { return read(pipe[0], &byte, 1) == 1; }},
        {"memory", 1, [] { return Allocates(40'000'000, PROT_READ | PROT_WRITE); }},
        {"threads", 1, StartsAThread},
        {"grows", 1, [] { return ftruncate(memory, 900'000) == 0; }},
        {"opens", 0, [] { return open("/dev/null", O_RDONLY | O_CLOEXEC) >= 0; }},
        {"goes on without a filter", 0, GoesOnUnfiltered},
        {"connects", 0, [] { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0) >= 0; }},
        {"forks", 0, [] { return fork() >= 0; }},
        {"kills", 0, [] { return kill(getppid(), 0) == 0; }},
        {"runs", 0, [] { return execl("/bin/false", "false", nullptr) == 0; }},
        {"makes code", 0, [] { return Allocates(4096, PROT_READ | PROT_EXEC); }},
        {"shares too much", 0, [] { return ftruncate(memory, 1'100'000) == 0; }},
        {"takes too much", Unlimited, [] { return Allocates(60'000'000, PROT_READ | PROT_WRITE); }},
        {"takes less, and is held to it", Unlimited, [] { return AllocatesAfter({30'000'000}); }},
        {"takes more again", 1,
         [] {
             return AllocatesAfter({1'000'000, 45'000'000});
         }},
        {"aborts", SIGABRT, Aborts},
        {"spins", SIGXCPU, Spins},
    };
    for (const auto& [what, expected, step] : cases) {
        EXPECT_EQ(Confined(step), expected) << what;
    }
    close(pipe[0]);
    close(pipe[1]);
}

TEST(HelperProcessTest, HearsNothingFromAStarterThatIsGone) {
    const auto hears = [](bool goes) {
        return Forked([goes] {
            std::array<int, 2> ends{};
            (void)socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data());
            const bool isLeft = write(ends[0], "x", 1) == 1;
            if (!goes) {
                (void)fcntl(ends[0], F_DUPFD_CLOEXEC, HelperProcess::FirstMemory);
            }
            close(ends[0]);
            dup2(ends[1], HelperProcess::Channel);
            return isLeft && !HearStarter().isEmpty();
        });
    };
    EXPECT_EQ(hears(false), 1);
    EXPECT_EQ(hears(true), 0);
}

TEST(ConfinementTest, PrintsNowhereEvenWhereNothingCanBeOpened) {
    EXPECT_EQ(Forked([] {
                  const rlimit none{0, 0};
                  setrlimit(RLIMIT_NOFILE, &none);
                  BindToStarter();
                  return fcntl(STDOUT_FILENO, F_GETFD) < 0;
              }),
              1);
}

}  // namespace kadrona::platform
