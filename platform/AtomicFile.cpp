#include "platform/AtomicFile.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include "platform/Error.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

FileError WriteError(const QString& path, const QString& reason) {
    return FileError{u"Die Datei „%1“ konnte nicht geschrieben werden: %2."_s.arg(path, reason)};
}

FileError ReadError(const QString& path, const QString& reason) {
    return FileError{u"Die Datei „%1“ konnte nicht gelesen werden: %2."_s.arg(path, reason)};
}

/// The path itself; throws where something that must stay stands under the name, or where nothing
/// can. The permission bits are asked, not the system: it lets an administrator write to every
/// file.
const QString& Replaceable(const QString& path) {
    if (path.contains(QChar::Null)) {
        // The system would end the name there, as every text of an error does.
        throw WriteError(QString(path).replace(QChar::Null, QChar::ReplacementCharacter),
                         u"Der Name enthält Zeichen, die hier nicht erlaubt sind"_s);
    }
    const QFileInfo existing(path);
    if (existing.isDir()) {
        throw WriteError(path, u"Unter diesem Namen gibt es einen Ordner"_s);
    }
    if (existing.exists() && !existing.permission(QFileDevice::WriteOwner)) {
        throw WriteError(path, u"Die Datei ist schreibgeschützt"_s);
    }
    return path;
}

}  // namespace

AtomicFile::AtomicFile(const QString& path) : path_(Replaceable(path)), file_(path_) {
    if (!file_.Create()) {
        throw WriteError(path, file_.errorString());
    }
}

void AtomicFile::Commit() {
    if (!file_.TakePlace()) {
        throw WriteError(path_, file_.errorString());
    }
}

void WriteFileAtomically(const QString& path, QByteArrayView content) {
    AtomicFile file(path);
    file.Device().write(content.data(), content.size());
    file.Commit();
}

QByteArray ReadWholeFile(const QString& path, qint64 maximumBytes) {
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        // A pipe or a device might never end.
        throw ReadError(path, u"Es ist keine gewöhnliche Datei"_s);
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw ReadError(path, SystemReason(file));
    }
    const auto checkSize = [&](qint64 size) {
        if (size > maximumBytes) {
            const QString limit = QLocale(QLocale::German).formattedDataSize(maximumBytes, 0);
            throw ReadError(path, u"Sie ist größer als %1"_s.arg(limit));
        }
    };
    checkSize(file.size());
    QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        throw ReadError(path, SystemReason(file));
    }
    checkSize(content.size());
    return content;
}

}  // namespace kadrona::platform
