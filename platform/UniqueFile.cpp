#include "platform/UniqueFile.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include "platform/Error.h"
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

bool OpenUniqueFile(QFile& file, const QString& folder, const QString& prefix) {
    FindUniqueName(folder, prefix, [&](const QString& path) {
        file.setFileName(path);
        const bool opened =
            file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered);
        return !opened && NameIsTaken(file);
    });
    return file.isOpen();
}

QString CreateUniqueFile(const QString& folder, const QString& prefix) {
    QFile file;
    if (!OpenUniqueFile(file, folder, prefix)) {
        throw FileError(u"Im Ordner „%1“ konnte keine neue Datei angelegt werden: %2."_s.arg(
            folder, SystemReason(file)));
    }
    return QFileInfo(file.fileName()).fileName();
}

void RemoveUniqueFiles(const QString& folder, const QString& prefix, const QDateTime& time) {
    const QRegularExpression form(
        u"^%1[0-9A-F]{1,4}\\.tmp$"_s.arg(QRegularExpression::escape(prefix.left(3))));
    QDirIterator files(folder, {prefix.left(3) + u"*.tmp"_s}, QDir::Files | QDir::NoSymLinks);
    while (files.hasNext()) {
        const QString path = files.next();
        if (form.match(files.fileName()).hasMatch() && files.fileInfo().lastModified() < time) {
            QFile::remove(path);
        }
    }
}

}  // namespace kadrona::platform
