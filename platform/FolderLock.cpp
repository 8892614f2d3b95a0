#include "platform/FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>
#include <cerrno>
#include <chrono>

#include "platform/Error.h"
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

}  // namespace

FolderLock::FolderLock(const QString& folder)
    : handle_(open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (handle_ < 0) {
        throw FileError(
            u"Der Ordner „%1“ kann nicht geöffnet werden: %2."_s.arg(folder, SystemReason(errno)));
    }
    const QDeadlineTimer deadline(2s);
    while (IsTaken(handle_)) {
        if (deadline.hasExpired()) {
            close(handle_);
            throw FileError(
                u"Der Ordner „%1“ wird gerade von einem anderen Programm geändert."_s.arg(folder));
        }
        QThread::msleep(10);
    }
}

FolderLock::~FolderLock() {
    close(handle_);
}

}  // namespace kadrona::platform
