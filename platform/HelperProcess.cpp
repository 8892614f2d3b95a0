#include "platform/HelperProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <utility>
#include <vector>

#include "platform/Error.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {

namespace {

void RequireDone(int error) {
    if (error != 0) {
        throw Error(SystemReason(error));
    }
}

/// Copies of descriptors above all that the process is to have, so that none is put in the place of
/// another that is still to be put; closed at the end.
class Copies {
 public:
    ~Copies() {
        for (const int copy : copies_) {
            close(copy);
        }
    }
    int Of(int handle) {
        constexpr int AboveAll = 16;
        const int copy = fcntl(handle, F_DUPFD_CLOEXEC, AboveAll);
        RequireDone(copy < 0 ? errno : 0);
        copies_.push_back(copy);
        return copy;
    }

 private:
    std::vector<int> copies_;
};

/// What the process begins with, so that nothing of this one's goes along by chance.
class Beginning {
 public:
    Beginning() {
        posix_spawn_file_actions_init(&files_);
        posix_spawnattr_init(&attributes_);
        sigset_t all;
        sigset_t none;
        sigfillset(&all);
        sigemptyset(&none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~Beginning() {
        posix_spawn_file_actions_destroy(&files_);
        posix_spawnattr_destroy(&attributes_);
    }
    Beginning(const Beginning&) = delete;
    Beginning& operator=(const Beginning&) = delete;

    void Give(int handle, int as) {
        RequireDone(posix_spawn_file_actions_adddup2(&files_, handle, as));
    }
    void GiveNoneFrom(int first) {
        RequireDone(posix_spawn_file_actions_addclosefrom_np(&files_, first));
    }
    pid_t Start(const QByteArray& program) const {
        std::array<char*, 2> arguments{const_cast<char*>(program.constData()), nullptr};
        pid_t process = -1;
        RequireDone(posix_spawn(&process, program.constData(), &files_, &attributes_,
                                arguments.data(), environ));
        return process;
    }

 private:
    posix_spawn_file_actions_t files_{};
    posix_spawnattr_t attributes_{};
};

}  // namespace

HelperProcess::HelperProcess(const QString& program,
                             std::initializer_list<const SharedMemory*> memory) {
    std::array<int, 2> ends{};
    RequireDone(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0 ? 0
                                                                                        : errno);
    channel_ = ends[0];
    try {
        Copies copies;
        Beginning beginning;
        beginning.Give(copies.Of(ends[1]), Channel);
        int place = FirstMemory;
        for (const SharedMemory* given : memory) {
            beginning.Give(copies.Of(given->Handle()), place++);
        }
        beginning.GiveNoneFrom(place);
        process_ = beginning.Start(QFile::encodeName(program));
    } catch (...) {
        close(ends[1]);
        close(ends[0]);
        throw;
    }
    close(ends[1]);
}

HelperProcess::~HelperProcess() {
    End();
}

bool HelperProcess::Send(const QByteArray& message) const {
    return send(channel_, message.constData(), static_cast<size_t>(message.size()),
                MSG_NOSIGNAL | MSG_DONTWAIT) == message.size();
}

HelperProcess::Heard HelperProcess::Hear(QByteArray& message, std::chrono::milliseconds most) {
    pollfd waiting{.fd = channel_, .events = POLLIN, .revents = 0};
    if (poll(&waiting, 1, static_cast<int>(most.count())) <= 0) {
        return Heard::Nothing;
    }
    message.resize(LongestMessage);
    const ssize_t length = recv(channel_, message.data(), static_cast<size_t>(message.size()),
                                MSG_DONTWAIT | MSG_TRUNC);
    if (length < 0 && (errno == EAGAIN || errno == EINTR)) {
        return Heard::Nothing;
    }
    if (length <= 0) {
        return Heard::End;
    }
    message.truncate(length > message.size() ? 0 : length);
    return Heard::Message;
}

std::chrono::nanoseconds HelperProcess::TimeUsed() const {
    clockid_t clock = 0;
    timespec used{};
    if (clock_getcpuclockid(static_cast<pid_t>(process_), &clock) == 0) {
        (void)clock_gettime(clock, &used);
    }
    return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

int HelperProcess::End(std::chrono::milliseconds grace) {
    if (process_ < 0) {
        return 0;
    }
    close(channel_);
    const auto process = static_cast<pid_t>(std::exchange(process_, -1));
    int status = 0;
    constexpr std::chrono::milliseconds Look{5};
    for (; grace.count() > 0; grace -= Look) {
        if (waitpid(process, &status, WNOHANG) == process) {
            return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        }
        (void)poll(nullptr, 0, Look.count());
    }
    kill(process, SIGKILL);
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
    return 0;
}

QByteArray HearStarter() {
    QByteArray message(HelperProcess::LongestMessage, Qt::Uninitialized);
    const ssize_t length =
        read(HelperProcess::Channel, message.data(), static_cast<size_t>(message.size()));
    // Had it gone before this process was bound to it, nobody would end this one.
    pollfd starter{.fd = HelperProcess::Channel, .events = 0, .revents = 0};
    const bool isGone = poll(&starter, 1, 0) > 0;
    message.truncate(isGone ? 0 : std::max<ssize_t>(length, 0));
    return message;
}

void TellStarter(const QByteArray& message) {
    (void)!write(HelperProcess::Channel, message.constData(), static_cast<size_t>(message.size()));
}

}  // namespace kadrona::platform
