#include "platform/ReplacementFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <array>
#include <cerrno>
#include <cstdio>

#include "platform/FileModes.h"
#include "platform/Renaming.h"
#include "platform/SystemReason.h"
#include "platform/UniqueFile.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

const QString NamePrefix = u"kdr"_s;

QString FolderOf(const QString& path) {
    return QFileInfo(path).path();
}

/// Why what stands under a name must stay; empty where it can be replaced. The permission bits are
/// asked, not the system: it lets an administrator write to every file.
QString Obstacle(mode_t mode) {
    if (S_ISDIR(mode)) {
        return u"Unter diesem Namen gibt es einen Ordner"_s;
    }
    if (!S_ISREG(mode)) {
        return u"Es ist keine gewöhnliche Datei"_s;
    }
    return (mode & S_IWUSR) == 0 ? u"Die Datei ist schreibgeschützt"_s : QString();
}

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

/// Waits until the content of an open file is on the disk. Returns 0 or the system's
/// error code; a file system that cannot tell counts as done.
int Flush(int handle) {
    return fsync(handle) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno;
}

/// Removes what killed programs left in the folder of a file that was just written. The time is
/// told by that file's last change of any kind, for the folder may lie on a machine with another
/// clock; that folder may also hold very many files, so it is looked through only once.
void RemoveLeftOvers(const QString& written) {
    static QSet<QString> tidyFolders;
    const QString folder = FolderOf(written);
    if (!tidyFolders.contains(folder)) {
        tidyFolders.insert(folder);
        RemoveUniqueFiles(folder, NamePrefix, QFileInfo(written).metadataChangeTime().addDays(-1));
    }
}

}  // namespace

ReplacementFile::~ReplacementFile() {
    if (handle_ >= 0) {
        ::close(handle_);
    }
    if (!waitingName_.isEmpty()) {
        QFile::remove(waitingName_);
    }
}

bool ReplacementFile::Fail(const QString& reason) {
    failed_ = true;
    setErrorString(reason);
    return false;
}

bool ReplacementFile::FailWith(int code) {
    return Fail(SystemReason(code));
}

bool ReplacementFile::Create() {
    if (!FindTarget() || (!OpenWithoutName() && (failed_ || !OpenWithName()))) {
        return false;
    }
    // Past the mask, which knows nothing of the folder. A file system without permissions refuses.
    fchmod(handle_, mode_);
    // Every write must reach the system, for the first that fails to be known.
    return open(WriteOnly | Unbuffered);
}

/// Learns where the file is to stand, and with which permissions.
bool ReplacementFile::FindTarget() {
    const FollowedPath followed = FollowLinks(target_, links_);
    if (!followed.refusal.isEmpty()) {
        return Fail(followed.refusal);
    }
    target_ = followed.path;
    struct stat existing {};
    if (lstat(QFile::encodeName(target_).constData(), &existing) == 0) {
        constexpr mode_t Permissions = S_IRWXU | S_IRWXG | S_IRWXO;
        mode_ = existing.st_mode & Permissions;
        const QString obstacle = Obstacle(existing.st_mode);
        return obstacle.isEmpty() || Fail(obstacle);
    }
    mode_ = ModeOfNewFile(FolderOf(target_));
    return errno == ENOENT || FailWith(errno);
}

/// False without a failure where the file system or the machine knows no such files.
bool ReplacementFile::OpenWithoutName() {
    handle_ = ::open(QFile::encodeName(FolderOf(target_)).constData(),
                     O_TMPFILE | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (handle_ < 0) {
        const bool unknown = errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL;
        return unknown ? false : FailWith(errno);
    }
    if (access(OpenFilePath(handle_).constData(), F_OK) != 0) {
        ::close(handle_);
        handle_ = -1;
    }
    return handle_ >= 0;
}

bool ReplacementFile::OpenWithName() {
    const UniqueFile file = OpenUniqueFile(FolderOf(target_), NamePrefix);
    handle_ = file.handle;
    if (handle_ < 0) {
        return FailWith(file.error);
    }
    waitingName_ = file.path;
    return true;
}

void ReplacementFile::SetModified(const QDateTime& time) const {
    const auto milliseconds = time.toMSecsSinceEpoch();
    timespec modified{};
    modified.tv_sec = milliseconds / 1000;
    modified.tv_nsec = milliseconds % 1000 * 1'000'000;
    const std::array times{modified, modified};
    futimens(handle_, times.data());
}

bool ReplacementFile::TakePlace() {
    if (failed_) {
        return false;
    }
    if (const int code = Flush(handle_); code != 0) {
        return FailWith(code);
    }
    if (!GiveName()) {
        return false;
    }
    hasTakenPlace_ = true;
    close();
    const int code = FlushFolder(FolderOf(target_));
    return code == 0 || FailWith(code);
}

/// A link cannot take another file's place, a rename can. So only where there is such a file a
/// name is needed for the moment between the two.
bool ReplacementFile::GiveName() {
    if (waitingName_.isEmpty()) {
        int code = Link(handle_, target_);
        if (code == 0) {
            return true;
        }
        if (code == EEXIST) {
            FindUniqueName(FolderOf(target_), NamePrefix, [&](const QString& path) {
                code = Link(handle_, path);
                waitingName_ = code == 0 ? path : QString();
                return code == EEXIST;
            });
        }
        if (code != 0) {
            return FailWith(code);
        }
    }
    return RenameToTarget();
}

bool ReplacementFile::RenameToTarget() {
    if (rename(QFile::encodeName(waitingName_).constData(),
               QFile::encodeName(target_).constData()) != 0) {
        return FailWith(errno);
    }
    waitingName_.clear();
    RemoveLeftOvers(target_);
    return true;
}

bool ReplacementFile::seek(qint64 position) {
    return QIODevice::seek(position) &&
           (lseek(handle_, position, SEEK_SET) >= 0 || FailWith(errno));
}

qint64 ReplacementFile::readData(char* /*data*/, qint64 /*maximum*/) {
    return -1;
}

qint64 ReplacementFile::writeData(const char* data, qint64 size) {
    qint64 written = 0;
    while (written < size && !failed_) {
        // The system may cut a write short and name the reason only when the rest is tried.
        const ssize_t count = ::write(handle_, data + written, static_cast<size_t>(size - written));
        if (count > 0) {
            written += count;
        } else if (count == 0 || errno != EINTR) {
            FailWith(count == 0 ? ENOSPC : errno);
        }
    }
    size_ = qMax(size_, pos() + written);
    return failed_ ? -1 : written;
}

}  // namespace kadrona::platform
