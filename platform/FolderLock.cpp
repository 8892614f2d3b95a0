#include "platform/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>
#include <cerrno>
#include <chrono>

#include "platform/Error.h"
#include "platform/HarmlessText.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Whether the lock is held by someone else.
bool IsTaken(int handle) {
    int result = 0;
    do {
        result = flock(handle, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    return result != 0 && errno == EWOULDBLOCK;
}

/// The program that holds the lock, as far as the system tells; empty where it does not.
QString HolderOf(int handle) {
    struct stat status {};
    QFile locks(u"/proc/locks"_s);
    if (fstat(handle, &status) != 0 || !locks.open(QIODevice::ReadOnly)) {
        return {};
    }
    // "7: FLOCK  ADVISORY  WRITE 4711 fe:01:393219 0 EOF"
    const QByteArray inode = ':' + QByteArray::number(quint64{status.st_ino});
    for (const QByteArray& line : locks.readAll().split('\n')) {
        const QByteArrayList words = line.simplified().split(' ');
        if (words.size() > 5 && words[1] == "FLOCK" && words[5].endsWith(inode)) {
            QFile name(u"/proc/%1/comm"_s.arg(QString::fromLatin1(words[4])));
            const bool isNamed = name.open(QIODevice::ReadOnly);
            return u" („%1“, Prozess %2)"_s.arg(
                isNamed ? HarmlessLine(QString::fromUtf8(name.readAll().trimmed())) : u"?"_s,
                QString::fromLatin1(words[4]));
        }
    }
    return {};
}

}  // namespace

FolderLock::FolderLock(const QString& folder)
    : handle_(open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (handle_ < 0) {
        throw FileError(
            u"Der Ordner „%1“ kann nicht geöffnet werden: %2."_s.arg(folder, SystemReason(errno)));
    }
    const QDeadlineTimer deadline(1s);
    while (IsTaken(handle_)) {
        if (deadline.hasExpired()) {
            const QString holder = HolderOf(handle_);
            close(handle_);
            throw FileError(
                u"Der Ordner „%1“ wird gerade von einem anderen Programm%2 gesperrt."_s.arg(
                    folder, holder));
        }
        QThread::msleep(10);
    }
}

FolderLock::~FolderLock() {
    close(handle_);
}

}  // namespace kadrona::platform
