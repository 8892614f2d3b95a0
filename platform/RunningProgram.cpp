#include "platform/RunningProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QFile>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "platform/Paths.h"

namespace kadrona::platform {

namespace {

using namespace Qt::StringLiterals;

/// The first program may just be drawing a large photo.
constexpr int AnswerMilliseconds = 4000;
/// A start sends at once; who keeps connections open is let go.
constexpr int RequestMilliseconds = 2000;
constexpr int MostClients = 8;
/// Until file handles may be free again.
constexpr int RestMilliseconds = 1000;
constexpr char Taken = 1;

/// False where the path is too long for one.
bool AddressOf(const QByteArray& path, sockaddr_un& address) {
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || size_t(path.size()) >= sizeof address.sun_path) {
        return false;
    }
    std::ranges::copy(path, std::begin(address.sun_path));
    return true;
}

/// One request is one packet: it comes whole or not at all. Neither end waits for the other.
int NewSocket() {
    return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

bool IsOfThisUser(int connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == geteuid();
}

bool HandOver(const sockaddr_un& address, const QByteArray& request) {
    const int connection = NewSocket();
    const bool connected =
        connection >= 0 &&
        connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    bool taken = false;
    if (connected && IsOfThisUser(connection) &&
        send(connection, request.constData(), size_t(request.size()), MSG_NOSIGNAL) ==
            request.size()) {
        pollfd answer{.fd = connection, .events = POLLIN, .revents = 0};
        char byte = 0;
        poll(&answer, 1, AnswerMilliseconds);
        shutdown(connection, SHUT_RD);  // it has answered by now, or finds that it no longer can
        taken = recv(connection, &byte, 1, 0) == 1 && byte == Taken;
    }
    if (connection >= 0) {
        close(connection);
    }
    return taken;
}

/// -1 where there can be none.
int NewServer(const sockaddr_un& address, const QByteArray& path) {
    const int server = NewSocket();
    unlink(path.constData());  // of one that was killed; who holds the lock is the only one
    if (server >= 0 &&
        (bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
         listen(server, MostClients) != 0)) {
        close(server);
        return -1;
    }
    return server;
}

}  // namespace

RunningProgram::~RunningProgram() {
    for (const int client : std::as_const(clients_)) {
        close(client);
    }
    if (server_ >= 0) {
        unlink(socketPath_.constData());
        close(server_);
    }
    if (lock_ >= 0) {
        close(lock_);
    }
}

RunningProgram::Role RunningProgram::Start(const QString& identity, const QByteArray& request) {
    const QString folder = RuntimeFolder();
    const QByteArray mark =
        QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha256).toHex().first(16);
    const QByteArray base = QFile::encodeName(JoinPath(folder, u"kadrona-")) + mark;
    sockaddr_un address{};
    socketPath_ = base + ".socket";
    if (folder.isEmpty() || !AddressOf(socketPath_, address)) {
        return Role::Alone;
    }
    lock_ = open((base + ".lock").constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
                 S_IRUSR | S_IWUSR);
    if (lock_ < 0) {
        return Role::Alone;
    }
    constexpr int Tries = 20;
    constexpr int PauseMicroseconds = 50'000;
    for (int i = 0; i < Tries; ++i) {
        if (flock(lock_, LOCK_EX | LOCK_NB) == 0) {
            server_ = NewServer(address, socketPath_);
            return server_ >= 0 ? Role::First : Role::Alone;
        }
        if (request.isEmpty()) {
            return Role::Alone;
        }
        struct stat status {};
        if (lstat(socketPath_.constData(), &status) == 0) {
            return HandOver(address, request) ? Role::HandedOver : Role::Alone;
        }
        usleep(PauseMicroseconds);  // the first one has only just begun, or is just ending
    }
    return Role::Alone;
}

void RunningProgram::Listen(IsRequest isRequest) {
    isRequest_ = std::move(isRequest);
    if (server_ >= 0) {
        auto* notifier = new QSocketNotifier(server_, QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this,
                [this, notifier] { Accept(*notifier); });
    }
}

void RunningProgram::Accept(QSocketNotifier& newcomers) {
    const int client = accept4(server_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (client < 0) {
        // Who cannot be let in stays at the door, and would be announced without a pause.
        newcomers.setEnabled(false);
        QTimer::singleShot(RestMilliseconds, &newcomers,
                           [&newcomers] { newcomers.setEnabled(true); });
        return;
    }
    if (clients_.size() >= MostClients || !IsOfThisUser(client)) {
        close(client);
        return;
    }
    clients_.insert(client);
    auto* notifier = new QSocketNotifier(client, QSocketNotifier::Read, this);
    const auto finish = [this, notifier, client](bool readable) {
        if (!notifier->isEnabled()) {
            return;  // the number may be another connection's by now
        }
        notifier->setEnabled(false);
        notifier->deleteLater();
        if (readable) {
            Receive(client);
        }
        clients_.remove(client);
        close(client);
    };
    connect(notifier, &QSocketNotifier::activated, this, [finish] { finish(true); });
    QTimer::singleShot(RequestMilliseconds, notifier, [finish] { finish(false); });
}

void RunningProgram::Receive(int client) {
    QByteArray request(LongestRequest, Qt::Uninitialized);
    // With this flag the true length is returned: a longer one is none of ours.
    const ssize_t length = recv(client, request.data(), size_t(request.size()), MSG_TRUNC);
    if (length <= 0 || length > request.size()) {
        return;
    }
    request.truncate(length);
    // Who has waited too long does it itself; it must not be done twice.
    if (!isRequest_(request) || send(client, &Taken, 1, MSG_NOSIGNAL) != 1) {
        return;
    }
    // What is done may take its time, or show a dialog.
    QMetaObject::invokeMethod(
        this, [this, request] { Q_EMIT Requested(request); }, Qt::QueuedConnection);
}

}  // namespace kadrona::platform
