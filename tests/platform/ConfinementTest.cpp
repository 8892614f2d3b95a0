#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <thread>

#include "platform/confinement/Confinement.h"

namespace kadrona::platform {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int Unlimited = 1;
#else
constexpr int Unlimited = 0;
#endif

/// Whether a step succeeds in a process of its own that is confined; its signal where it dies.
int Confined(const std::function<bool()>& step) {
    const pid_t process = fork();
    if (process == 0) {
        Confine({.memory = 50'000'000, .file = 1'000'000, .seconds = 1});
        _exit(step() ? 1 : 0);
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

bool Allocates(size_t bytes, int protection) {
    return mmap(nullptr, bytes, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED;
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
        {"connects", 0, [] { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0) >= 0; }},
        {"forks", 0, [] { return fork() >= 0; }},
        {"kills", 0, [] { return kill(getppid(), 0) == 0; }},
        {"runs", 0, [] { return execl("/bin/false", "false", nullptr) == 0; }},
        {"makes code", 0, [] { return Allocates(4096, PROT_READ | PROT_EXEC); }},
        {"shares too much", 0, [] { return ftruncate(memory, 1'100'000) == 0; }},
        {"takes too much", Unlimited, [] { return Allocates(60'000'000, PROT_READ | PROT_WRITE); }},
        {"aborts", SIGABRT, Aborts},
        {"spins", SIGXCPU, Spins},
    };
    for (const auto& [what, expected, step] : cases) {
        EXPECT_EQ(Confined(step), expected) << what;
    }
    close(pipe[0]);
    close(pipe[1]);
}

}  // namespace kadrona::platform
