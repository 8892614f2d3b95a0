#include "platform/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QThread>
#include <cerrno>

#include "platform/SystemReason.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// A share on this machine lets its users keep files for themselves until somebody else wants them.
int OpenForReading(const QByteArray& name, int flags) {
    constexpr int MostTries = 100;
    constexpr unsigned long MillisecondsBetween = 20;
    int handle = open(name.constData(), flags);
    for (int tries = 1; handle < 0 && errno == EWOULDBLOCK && tries < MostTries; ++tries) {
        QThread::msleep(MillisecondsBetween);
        handle = open(name.constData(), flags);
    }
    return handle;
}

}  // namespace

QString Opening::Reason() const {
    switch (outcome) {
        case Outcome::Opened:
            return {};
        case Outcome::Missing:
            return SystemReason(ENOENT);
        case Outcome::Folder:
            return u"Es ist ein Ordner"_s;
        case Outcome::Special:
            return u"Es ist keine gewöhnliche Datei"_s;
        case Outcome::Failed:
            break;
    }
    return SystemReason(error);
}

Opening OpenRegularFile(QFile& file, const QString& path, LastPart lastPart) {
    using Outcome = Opening::Outcome;
    if (path.contains(QChar::Null)) {
        return {Outcome::Failed, EINVAL};  // the system would end the name there
    }
    const int links = lastPart == LastPart::IsNoLink ? O_NOFOLLOW : 0;
    // Opening a pipe would wait for a writer.
    const int handle = OpenForReading(QFile::encodeName(path),
                                      O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | links);
    if (handle < 0) {
        const int code = errno;
        return code == ENOENT  ? Opening{Outcome::Missing, code}
               : code == ENXIO ? Opening{Outcome::Special, code}
                               : Opening{Outcome::Failed, code};
    }
    struct stat status {};
    if (fstat(handle, &status) != 0) {
        const int code = errno;
        close(handle);
        return {Outcome::Failed, code};
    }
    if (!S_ISREG(status.st_mode)) {
        close(handle);
        return {S_ISDIR(status.st_mode) ? Outcome::Folder : Outcome::Special, 0};
    }
    if (!file.open(handle, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        close(handle);
        return {Outcome::Failed, EBADF};
    }
    return {};
}

}  // namespace kadrona::platform
