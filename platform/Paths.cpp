#include "platform/Paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <cerrno>

#include "platform/Error.h"
#include "platform/FileModes.h"
#include "platform/Renaming.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

QString SystemCommonAppDataFolder() {
    const QFileInfo shared(u"/var/lib/Kadrona"_s);
    if (shared.isDir() && shared.isWritable()) {
        return shared.path();
    }
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

/// With all above it, each on the disk before the next. The system's code; 0 where the folder
/// exists afterwards.
int MakeFolder(const QString& path) {
    if (path.isEmpty()) {
        return ENOENT;
    }
    if (QFileInfo(path).isDir()) {
        return 0;
    }
    const QString clean = QDir::cleanPath(path);
    const QString parent = QFileInfo(clean).path();
    if (const int error = parent == clean ? ENOENT : MakeFolder(parent); error != 0) {
        return error;
    }
    const QByteArray name = QFile::encodeName(clean);
    const mode_t mode = ModeOfNewFolder(parent);
    if (mkdir(name.constData(), mode) == 0) {
        chmod(name.constData(), mode);  // the mask must not close it to a group that shares it
        const int code = FlushFolder(parent);
        if (code != 0) {
            rmdir(name.constData());
        }
        return code;
    }
    const int error = errno;
    return QFileInfo(clean).isDir() ? 0 : error;
}

}  // namespace

QString JoinPath(QStringView folder, QStringView name) {
    QString path;
    path.reserve(folder.size() + 1 + name.size());
    path += folder;
    if (!folder.endsWith(QDir::separator())) {
        path += QDir::separator();
    }
    path += name;
    return path;
}

QString WithoutTrailingSeparator(QString path) {
    if (path.endsWith(QDir::separator())) {
        path.chop(1);
    }
    return path;
}

QString ProgramFolder() {
    const QFileInfo program(QCoreApplication::applicationFilePath());
    return WithoutTrailingSeparator(QDir::toNativeSeparators(program.canonicalPath()));
}

QString TemplateFolder(const QString& programFolder) {
    return DeliveredFolder(programFolder, u"Schablonen"_s);
}

QString DeliveredFolder(const QString& programFolder, const QString& name) {
    const QString own = JoinPath(programFolder, name);
    const QString shared = QDir::cleanPath(JoinPath(programFolder, u"../share/kadrona/"_s + name));
    return !QFileInfo(own).isDir() && QFileInfo(shared).isDir() ? shared : own;
}

QString CommonAppDataFolder() {
    const QString chosen = qEnvironmentVariable("KADRONA_COMMON_APPDATA");
    return WithoutTrailingSeparator(
        QDir::toNativeSeparators(chosen.isEmpty() ? SystemCommonAppDataFolder() : chosen));
}

QString RuntimeFolder() {
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    struct stat status {};
    const bool isOwn = folder.startsWith(u'/') &&
                       lstat(QFile::encodeName(folder).constData(), &status) == 0 &&
                       S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
                       (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    return isOwn ? folder : QString();
}

bool IsFile(const QString& path) {
    struct stat status {};
    if (stat(QFile::encodeName(path).constData(), &status) == 0) {
        return S_ISREG(status.st_mode);
    }
    if (errno == ENOENT) {
        return false;
    }
    throw FileError(
        u"Die Datei „%1“ konnte nicht gelesen werden: %2."_s.arg(path, SystemReason(errno)));
}

bool IsFolder(const QString& path) {
    struct stat status {};
    if (stat(QFile::encodeName(path).constData(), &status) == 0) {
        return S_ISDIR(status.st_mode);
    }
    if (errno == ENOENT || errno == ENOTDIR) {
        return false;
    }
    throw FileError(
        u"Der Ordner „%1“ konnte nicht gelesen werden: %2."_s.arg(path, SystemReason(errno)));
}

bool CreateFolder(const QString& path) {
    return MakeFolder(path) == 0;
}

void RequireFolder(const QString& path) {
    if (const int error = MakeFolder(path); error != 0) {
        throw FileError(
            u"Der Ordner „%1“ kann nicht angelegt werden: %2."_s.arg(path, SystemReason(error)));
    }
}

}  // namespace kadrona::platform
