#include "platform/SilenceWatch.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <array>
#include <csignal>
#include <ctime>
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

/// To the process that watches; negative without one.
int& Channel() {
    static int channel = -1;
    return channel;
}

QString TextOf(const QString& awaited) {
    return u"Das Programm wartet auf %1. Ist das Laufwerk oder die Verbindung dorthin gestört? Es "
           u"arbeitet von selbst weiter, sobald eine Antwort kommt."_s.arg(awaited);
}

/// What the watching process needs, made before there is one.
struct Word {
    QByteArray text;
    QByteArray line;
    QByteArray program;
    QByteArray processNumber;
    clockid_t clock = 0;
    milliseconds look{};
};

/// System calls alone, here and below: the process may be the copy of one with several threads.
nanoseconds TimeUsed(clockid_t clock) {
    timespec used{};
    (void)clock_gettime(clock, &used);
    return std::chrono::seconds(used.tv_sec) + nanoseconds(used.tv_nsec);
}

void Tell(const Word& word) {
    const std::array arguments{word.program.constData(), "--waiting",
                               word.processNumber.constData(), word.text.constData(),
                               static_cast<const char*>(nullptr)};
    if (!word.program.isEmpty()) {
        execv(word.program.constData(), const_cast<char* const*>(arguments.data()));
    }
    (void)!write(STDERR_FILENO, word.line.constData(), static_cast<size_t>(word.line.size()));
}

/// Lets go of what the copy has inherited first, but for the standard error: it would keep the
/// program's lock and its ends of pipes.
[[noreturn]] void WatchFromCopy(int channel, const Word& word) {
    constexpr unsigned FirstOwn = 3;  // behind the standard streams
    (void)dup2(channel, STDIN_FILENO);
    (void)close_range(FirstOwn, ~0U, 0);
    nanoseconds before = TimeUsed(word.clock);
    for (int silent = 0;;) {
        pollfd answers{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
        const bool answered = poll(&answers, 1, static_cast<int>(word.look.count())) > 0;
        std::array<char, 64> taken{};
        if (answered && read(STDIN_FILENO, taken.data(), taken.size()) <= 0) {
            _exit(0);  // what was waited for is over
        }
        const nanoseconds now = TimeUsed(word.clock);
        const bool calculates = now - before > nanoseconds(word.look) / LeastShare;
        before = now;
        silent = answered || calculates ? 0 : silent + 1;
        if (silent == LooksInPatience) {
            Tell(word);
        }
    }
}

}  // namespace

SilenceWatch::SilenceWatch(const QString& awaited, milliseconds patience) {
    const QByteArray text = TextOf(awaited).toUtf8();
    Word word{.text = text,
              .line = text + '\n',
              .program = Teller(),
              .processNumber = QByteArray::number(getpid()),
              .look = patience / LooksInPatience};
    std::array<int, 2> ends{};
    if (Channel() >= 0 || clock_getcpuclockid(getpid(), &word.clock) != 0 ||
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return;  // it works all the same
    }
    process_ = fork();
    if (process_ == 0) {
        WatchFromCopy(ends[1], word);
    }
    close(ends[1]);
    if (process_ < 0) {
        close(ends[0]);  // there is no room for another process
    } else {
        Channel() = ends[0];
    }
}

SilenceWatch::~SilenceWatch() {
    if (process_ < 0) {
        return;
    }
    close(std::exchange(Channel(), -1));
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

void SilenceWatch::NoteAnswer() {
    constexpr qint64 BetweenNotes = 100;  // milliseconds
    static QElapsedTimer noted;
    if (Channel() >= 0 && (!noted.isValid() || noted.elapsed() >= BetweenNotes)) {
        (void)send(Channel(), "", 1, MSG_DONTWAIT | MSG_NOSIGNAL);
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
