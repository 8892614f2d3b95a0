#include "platform/SilenceWatch.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <optional>
#include <utility>

#include "platform/HarmlessText.h"

namespace kadrona::platform {

namespace {

using namespace Qt::StringLiterals;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

/// The patience is as many times a look at whether the program calculates.
constexpr int LooksInPatience = 4;
/// Whoever has less of a processor waits.
constexpr int LeastShare = 10;

QByteArray& Teller() {
    static QByteArray program;
    return program;
}

QString TextOf(const QString& awaited) {
    return u"Das Programm wartet auf %1. Ist das Laufwerk oder die Verbindung dorthin gestört? Es "
           u"arbeitet von selbst weiter, sobald eine Antwort kommt."_s.arg(awaited);
}

/// What the watching process is told: a kind, and with the first of them what it needs.
enum class Kind : char { Begin, Answer, End };

struct Message {
    static constexpr size_t MostText = 5000;

    Kind kind{};
    milliseconds look{};
    /// Both end with a zero.
    std::array<char, 1000> teller{};
    std::array<char, MostText> text{};
};

/// The process that watches for all watches of this one, from the first of them on: making one each
/// time would take milliseconds of a program that has grown.
struct Watcher {
    int channel = -1;  ///< negative without one
    pid_t process = -1;
    bool isBusy = false;
};

Watcher& TheWatcher() {
    static Watcher watcher;
    return watcher;
}

/// What the watching process knows from the beginning.
struct Watched {
    clockid_t clock = 0;
    std::array<char, 16> processNumber{};
};

/// System calls alone, here and below: the process may be the copy of one with several threads.
nanoseconds TimeUsed(clockid_t clock) {
    timespec used{};
    (void)clock_gettime(clock, &used);
    return std::chrono::seconds(used.tv_sec) + nanoseconds(used.tv_nsec);
}

/// Tells the user, as long as it lives.
class Telling {
 public:
    Telling(const Message& message, const Watched& watched) {
        if (message.teller[0] == 0) {
            (void)!write(STDERR_FILENO, message.text.data(), strlen(message.text.data()));
            (void)!write(STDERR_FILENO, "\n", 1);
            return;
        }
        std::array<int, 2> ends{-1, -1};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            return;
        }
        process_ = fork();
        if (process_ == 0) {
            (void)dup2(ends[0], STDIN_FILENO);
            const std::array arguments{message.teller.data(), "--waiting",
                                       watched.processNumber.data(), message.text.data(),
                                       static_cast<const char*>(nullptr)};
            execv(message.teller.data(), const_cast<char* const*>(arguments.data()));
            _exit(1);
        }
        close(ends[0]);
        answers_ = ends[1];
    }
    ~Telling() {
        if (answers_ >= 0) {
            close(answers_);
        }
        if (process_ > 0) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
    }
    Telling(const Telling&) = delete;
    Telling& operator=(const Telling&) = delete;

    void NoteAnswer() const {
        if (answers_ >= 0) {
            (void)!write(answers_, "", 1);
        }
    }

 private:
    pid_t process_ = -1;
    int answers_ = -1;
};

/// Watches from the message that begins it to the one that ends it; the program's end is both's.
void WatchOnce(const Message& begin, const Watched& watched) {
    nanoseconds before = TimeUsed(watched.clock);
    std::optional<Telling> telling;
    for (int silent = 0;;) {
        pollfd news{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
        const int wait = telling ? -1 : static_cast<int>(begin.look.count());
        const bool answered = poll(&news, 1, wait) > 0;
        Kind kind{};
        if (answered && (read(STDIN_FILENO, &kind, sizeof kind) <= 0 || kind != Kind::Answer)) {
            return;
        }
        const nanoseconds now = TimeUsed(watched.clock);
        const bool calculates = now - before > nanoseconds(begin.look) / LeastShare;
        before = now;
        silent = answered || calculates ? 0 : silent + 1;
        if (telling && answered) {
            telling->NoteAnswer();
        } else if (!telling && silent == LooksInPatience) {
            telling.emplace(begin, watched);
        }
    }
}

/// Lets go of what the copy has inherited first, but for the standard error: it would keep the
/// program's lock and its ends of pipes.
[[noreturn]] void WatchFromCopy(int channel, const Watched& watched) {
    constexpr unsigned FirstOwn = 3;  // behind the standard streams
    (void)dup2(channel, STDIN_FILENO);
    (void)close(STDOUT_FILENO);
    (void)close_range(FirstOwn, ~0U, 0);
    (void)signal(SIGPIPE, SIG_IGN);
    for (const int ends : {SIGINT, SIGTERM, SIGHUP}) {
        (void)signal(ends, SIG_IGN);  // the program may do something yet
    }
    static Message message;
    while (read(STDIN_FILENO, &message, sizeof message) > 0) {
        if (message.kind == Kind::Begin) {
            WatchOnce(message, watched);
        }
    }
    _exit(0);
}

void StartWatcher(Watcher& watcher) {
    Watched watched;
    (void)snprintf(watched.processNumber.data(), watched.processNumber.size(), "%d", getpid());
    std::array<int, 2> ends{};
    if (clock_getcpuclockid(getpid(), &watched.clock) != 0 ||
        socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return;  // it works all the same
    }
    watcher.process = fork();
    if (watcher.process == 0) {
        WatchFromCopy(ends[1], watched);
    }
    close(ends[1]);
    if (watcher.process < 0) {
        close(ends[0]);  // there is no room for another process
    } else {
        watcher.channel = ends[0];
    }
}

/// One that no longer listens is let go, and the next watch has another one.
void StopWatcher(Watcher& watcher) {
    close(std::exchange(watcher.channel, -1));
    kill(watcher.process, SIGKILL);
    waitpid(watcher.process, nullptr, 0);
}

bool Send(const Watcher& watcher, const void* data, size_t size) {
    return send(watcher.channel, data, size, MSG_DONTWAIT | MSG_NOSIGNAL) ==
           static_cast<ssize_t>(size);
}

template <size_t Size>
void Put(std::array<char, Size>& text, const QByteArray& value) {
    const auto end =
        std::copy_n(value.cbegin(), std::min<qsizetype>(value.size(), Size - 1), text.begin());
    *end = 0;
}

}  // namespace

SilenceWatch::SilenceWatch(const QString& awaited, milliseconds patience) {
    Watcher& watcher = TheWatcher();
    if (watcher.isBusy) {
        return;
    }
    if (watcher.channel < 0) {
        StartWatcher(watcher);
    }
    if (watcher.channel < 0) {
        return;
    }
    Message message{.kind = Kind::Begin, .look = patience / LooksInPatience};
    Put(message.teller, Teller());
    Put(message.text, TextOf(awaited).toUtf8());
    watcher.isBusy = isFirst_ = Send(watcher, &message, sizeof message);
    if (!isFirst_) {
        StopWatcher(watcher);
    }
}

SilenceWatch::~SilenceWatch() {
    if (!isFirst_) {
        return;
    }
    Watcher& watcher = TheWatcher();
    watcher.isBusy = false;
    constexpr Kind End = Kind::End;
    if (!Send(watcher, &End, sizeof End)) {
        StopWatcher(watcher);
    }
}

void SilenceWatch::NoteAnswer() {
    constexpr qint64 BetweenNotes = 100;  // milliseconds
    static QElapsedTimer noted;
    if (TheWatcher().isBusy && (!noted.isValid() || noted.elapsed() >= BetweenNotes)) {
        constexpr Kind Answer = Kind::Answer;
        (void)Send(TheWatcher(), &Answer, sizeof Answer);
        noted.start();
    }
}

void SilenceWatch::SetTeller(const QString& program) {
    Teller() = QFile::encodeName(program);
}

QString AwaitedFile(const QString& path) {
    return u"die Datei „%1“"_s.arg(HarmlessLine(path));
}

}  // namespace kadrona::platform
