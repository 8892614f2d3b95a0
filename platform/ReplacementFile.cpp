#include "platform/ReplacementFile.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSet>

#include "platform/DiskFlush.h"
#include "platform/SystemReason.h"
#include "platform/UniqueFile.h"

#ifdef Q_OS_WIN
#include <windows.h>

#include <QDir>
#else
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#endif

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

const QString NamePrefix = u"kdr"_s;

/// Also where the link leads to nothing yet.
QString LinkFollowed(const QString& path) {
    const QFileInfo info(path);
    if (!info.isSymLink()) {
        return path;
    }
    return info.exists() ? info.canonicalFilePath() : info.symLinkTarget();
}

QString FolderOf(const QString& path) {
    return QFileInfo(path).path();
}

#ifdef Q_OS_WIN

/// Returns 0 or the system's error code.
int Rename(const QString& from, const QString& to) {
    const auto native = [](const QString& path) {
        return QDir::toNativeSeparators(path).toStdWString();
    };
    const DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    return MoveFileExW(native(from).c_str(), native(to).c_str(), flags) ? 0 : int(GetLastError());
}

#else

/// Where the system shows an open file.
QByteArray OpenFilePath(int handle) {
    return "/proc/self/fd/" + QByteArray::number(handle);
}

/// Puts a file without a name under one that must be free. Returns 0 or the system's error code.
int Link(int handle, const QString& path) {
    const int result = linkat(AT_FDCWD, OpenFilePath(handle).constData(), AT_FDCWD,
                              QFile::encodeName(path).constData(), AT_SYMLINK_FOLLOW);
    return result == 0 ? 0 : errno;
}

/// Returns 0 or the system's error code.
int Rename(const QString& from, const QString& to) {
    const int result =
        rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData());
    return result == 0 ? 0 : errno;
}

#endif

/// Removes what killed programs left in the folder of a file that was just written. The time is
/// told by that file, for the folder may lie on a machine with another clock; that folder may also
/// hold very many files, so it is looked through only once.
void RemoveLeftOvers(const QString& written) {
    static QSet<QString> tidyFolders;
    const QString folder = FolderOf(written);
    if (!tidyFolders.contains(folder)) {
        tidyFolders.insert(folder);
        RemoveUniqueFiles(folder, NamePrefix, QFileInfo(written).lastModified().addDays(-1));
    }
}

}  // namespace

ReplacementFile::ReplacementFile(const QString& target) : target_(LinkFollowed(target)) {}

ReplacementFile::~ReplacementFile() {
    file_.close();
    if (!waitingName_.isEmpty()) {
        QFile::remove(waitingName_);
    }
}

bool ReplacementFile::Fail(const QString& reason) {
    failed_ = true;
    setErrorString(reason);
    return false;
}

bool ReplacementFile::Create() {
    if (!OpenWithoutName()) {
        if (failed_) {
            return false;
        }
        if (!OpenUniqueFile(file_, FolderOf(target_), NamePrefix)) {
            return Fail(SystemReason(file_));
        }
        waitingName_ = file_.fileName();
    }
    if (const QFileInfo existing(target_); existing.exists()) {
        file_.setPermissions(existing.permissions());
    }
    // Every write must reach the system, for the first that fails to be known.
    return open(WriteOnly | Unbuffered);
}

bool ReplacementFile::TakePlace() {
    if (failed_) {
        return false;
    }
    if (const int code = FlushToDisk(file_.handle()); code != 0) {
        return Fail(SystemReason(code));
    }
    if (!GiveName()) {
        return false;
    }
    close();
    FlushFolder(FolderOf(target_));
    return true;
}

bool ReplacementFile::RenameToTarget() {
    if (const int code = Rename(waitingName_, target_); code != 0) {
        return Fail(SystemReason(code));
    }
    waitingName_.clear();
    RemoveLeftOvers(target_);
    return true;
}

bool ReplacementFile::seek(qint64 position) {
    return QIODevice::seek(position) && (file_.seek(position) || Fail(SystemReason(file_)));
}

qint64 ReplacementFile::readData(char* /*data*/, qint64 /*maximum*/) {
    return -1;
}

qint64 ReplacementFile::writeData(const char* data, qint64 size) {
    qint64 written = 0;
    while (written < size && !failed_) {
        // The system may cut a write short and name the reason only when the rest is tried.
        const qint64 count = file_.write(data + written, size - written);
        if (count <= 0) {
            Fail(SystemReason(file_));
        }
        written += count;
    }
    return failed_ ? -1 : written;
}

#ifdef Q_OS_WIN

bool ReplacementFile::OpenWithoutName() {
    return false;
}

bool ReplacementFile::GiveName() {
    file_.close();
    return RenameToTarget();
}

#else

/// False without a failure where the file system or the machine knows no such files.
bool ReplacementFile::OpenWithoutName() {
    constexpr mode_t EveryoneWithinTheMask = 0666;
    const int handle = ::open(QFile::encodeName(FolderOf(target_)).constData(),
                              O_TMPFILE | O_WRONLY | O_CLOEXEC, EveryoneWithinTheMask);
    if (handle < 0) {
        const bool unknown = errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL;
        return unknown ? false : Fail(SystemReason(errno));
    }
    if (access(OpenFilePath(handle).constData(), F_OK) != 0) {
        ::close(handle);
        return false;
    }
    return file_.open(handle, WriteOnly | Unbuffered, QFile::AutoCloseHandle);
}

/// A link cannot take another file's place, a rename can. So only where there is such a file a
/// name is needed for the moment between the two.
bool ReplacementFile::GiveName() {
    if (waitingName_.isEmpty()) {
        int code = Link(file_.handle(), target_);
        if (code == 0) {
            return true;
        }
        if (code == EEXIST) {
            FindUniqueName(FolderOf(target_), NamePrefix, [&](const QString& path) {
                code = Link(file_.handle(), path);
                waitingName_ = code == 0 ? path : QString();
                return code == EEXIST;
            });
        }
        if (code != 0) {
            return Fail(SystemReason(code));
        }
    }
    return RenameToTarget();
}

#endif

}  // namespace kadrona::platform
