#include "platform/AtomicFile.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <cerrno>

#include "platform/DiskFlush.h"
#include "platform/Error.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

FileError WriteError(const QString& path, const QString& reason) {
    return FileError(u"Die Datei „%1“ konnte nicht geschrieben werden: %2."_s.arg(path, reason));
}

FileError ReadError(const QString& path, const QString& reason) {
    return FileError(u"Die Datei „%1“ konnte nicht gelesen werden: %2."_s.arg(path, reason));
}

/// Throws where something that must stay stands under the name. The permission bits are asked, not
/// the system: it lets an administrator write to every file.
void CheckReplaceable(const QString& path) {
    const QFileInfo existing(path);
    if (existing.isDir()) {
        throw WriteError(path, u"Unter diesem Namen gibt es einen Ordner"_s);
    }
    if (existing.exists() && !existing.permission(QFileDevice::WriteOwner)) {
        throw WriteError(path, u"Die Datei ist schreibgeschützt"_s);
    }
}

}  // namespace

AtomicFile::AtomicFile(const QString& path) : file_(path) {
    CheckReplaceable(path);
    if (!file_.open(QIODevice::WriteOnly)) {
        throw WriteError(path, SystemReason(file_));
    }
}

qint64 AtomicFile::CompleteSaveFile::writeData(const char* data, qint64 size) {
    qint64 written = 0;
    while (written < size) {
        // What follows a short write fails and leaves the reason behind, for commit to see.
        const qint64 count = QSaveFile::writeData(data + written, size - written);
        if (count <= 0) {
            return -1;
        }
        written += count;
    }
    return written;
}

void AtomicFile::Commit() {
    const QString path = file_.fileName();
    // A write from Qt's buffer that the system cut short names no reason: the flush that tries the
    // rest does. After closing, every reason is lost. QSaveFile also flushes by itself, but takes a
    // failure to bring the content to the disk for a success.
    const bool failedBefore = file_.error() != QFileDevice::NoError;
    const bool flushed = file_.flush();
    QString reason;
    if (failedBefore || !flushed) {
        reason = SystemReason(file_);
    } else if (const int code = FlushToDisk(file_.handle()); code != 0) {
        reason = SystemReason(code);
    }
    if (!reason.isEmpty()) {
        file_.cancelWriting();
        file_.commit();
        throw WriteError(path, reason);
    }
    if (!file_.commit()) {
        throw WriteError(path, SystemReason(file_));
    }
    FlushFolder(QFileInfo(path).path());
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
