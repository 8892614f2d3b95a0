#include "platform/FolderProbe.h"

#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <csignal>
#include <thread>
#include <vector>

namespace kadrona::platform {

namespace {

constexpr int MissingStatus = 1;

/// System calls alone, here and in LookFromCopy: the process may be the copy of one with several
/// threads.
int StatusOf(const char* path) {
    // Whether there is a folder may be known from before; how full its disk is the server is asked.
    struct statfs disk {};
    (void)statfs(path, &disk);
    struct stat folder {};
    return stat(path, &folder) == 0 && S_ISDIR(folder.st_mode) ? 0 : MissingStatus;
}

/// Lets go of what the copy has inherited first: where it gets stuck, it would keep the program's
/// lock after the program's end.
[[noreturn]] void LookFromCopy(const char* path) {
    constexpr unsigned FirstOwn = 3;  // behind the standard streams
    (void)close_range(FirstOwn, ~0U, 0);
    _exit(StatusOf(path));
}

/// One that looked too long.
struct GivenUp {
    pid_t process;
    QByteArray path;
};

/// Whether so many still wait for that folder that one more would tell nothing new. Takes note of
/// those that have ended.
bool StillWait(std::vector<GivenUp>& givenUp, const QByteArray& path) {
    constexpr int Enough = 4;
    std::erase_if(givenUp, [](const GivenUp& looker) {
        return waitpid(looker.process, nullptr, WNOHANG) != 0;
    });
    return std::ranges::count(givenUp, path, &GivenUp::path) >= Enough;
}

}  // namespace

FolderState LookAtFolder(const QString& path, std::chrono::milliseconds patience) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds Pause(1);
    static std::vector<GivenUp> givenUp;
    const QByteArray name = QFile::encodeName(path);
    if (StillWait(givenUp, name)) {
        return FolderState::Silent;
    }
    const auto state = [](int status) {
        return status == 0 ? FolderState::There : FolderState::Missing;
    };
    const pid_t looker = fork();
    if (looker == 0) {
        LookFromCopy(name.constData());
    }
    if (looker < 0) {
        return state(StatusOf(name.constData()));  // there is no room for another process
    }
    const auto end = Clock::now() + patience;
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(looker, &status, WNOHANG)) == 0) {
        if (Clock::now() >= end) {
            kill(looker, SIGKILL);
            givenUp.push_back({looker, name});
            return FolderState::Silent;
        }
        std::this_thread::sleep_for(Pause);
    }
    if (ended < 0) {
        // Who started the program lets no process tell how it ended; it did, so the folder answers.
        return state(StatusOf(name.constData()));
    }
    return state(WIFEXITED(status) ? WEXITSTATUS(status) : MissingStatus);
}

}  // namespace kadrona::platform
