#include "platform/UniqueFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <cerrno>

#include "platform/Error.h"
#include "platform/FileModes.h"
#include "platform/Paths.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {

using namespace Qt::StringLiterals;

bool FindUniqueName(const QString& folder, const QString& prefix,
                    const std::function<bool(const QString& path)>& isTaken) {
    constexpr quint32 NameCount = 0x10000;
    // A random start keeps a folder with many such files from being walked through each time.
    const quint32 start = QRandomGenerator::global()->bounded(NameCount);
    for (quint32 attempt = 0; attempt < NameCount; ++attempt) {
        const quint32 number = (start + attempt) % NameCount;
        const QString name = prefix.left(3) + QString::number(number, 16).toUpper() + u".tmp"_s;
        if (!isTaken(JoinPath(folder, name))) {
            return true;
        }
    }
    return false;
}

int CreateNewFile(const QString& path) {
    const mode_t mode = ModeOfNewFile(QFileInfo(path).path());
    const int handle =
        open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (handle >= 0) {
        fchmod(handle, mode);  // the mask must not close it to a group that shares it
    }
    return handle;
}

UniqueFile OpenUniqueFile(const QString& folder, const QString& prefix) {
    UniqueFile file;
    FindUniqueName(folder, prefix, [&](const QString& path) {
        file.handle = CreateNewFile(path);
        file.error = file.handle < 0 ? errno : 0;
        file.path = path;
        return file.error == EEXIST;
    });
    return file;
}

QString CreateUniqueFile(const QString& folder, const QString& prefix) {
    const UniqueFile file = OpenUniqueFile(folder, prefix);
    if (file.handle < 0) {
        throw FileError(u"Im Ordner „%1“ konnte keine neue Datei angelegt werden: %2."_s.arg(
            folder, SystemReason(file.error)));
    }
    close(file.handle);
    return QFileInfo(file.path).fileName();
}

void RemoveUniqueFiles(const QString& folder, const QString& prefix, const QDateTime& time) {
    const QRegularExpression form(
        u"^%1[0-9A-F]{1,4}\\.tmp\\z"_s.arg(QRegularExpression::escape(prefix.left(3))));
    QDirIterator files(folder, {prefix.left(3) + u"*.tmp"_s}, QDir::Files | QDir::NoSymLinks);
    while (files.hasNext()) {
        const QString path = files.next();
        if (form.match(files.fileName()).hasMatch() && files.fileInfo().lastModified() < time) {
            QFile::remove(path);
        }
    }
}

}  // namespace kadrona::platform
