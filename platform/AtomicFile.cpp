#include "platform/AtomicFile.h"

#include <QFile>
#include <QLocale>
#include <cerrno>

#include "platform/Error.h"
#include "platform/RegularFile.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// The text of an error ends at a NUL, as a path does for the system.
QString Shown(QString path) {
    return path.replace(QChar::Null, QChar::ReplacementCharacter);
}

FileError WriteError(const QString& path, const QString& reason) {
    return FileError{
        u"Die Datei „%1“ konnte nicht geschrieben werden: %2."_s.arg(Shown(path), reason)};
}

FileError ReadError(const QString& path, const QString& reason) {
    return FileError{u"Die Datei „%1“ konnte nicht gelesen werden: %2."_s.arg(Shown(path), reason)};
}

}  // namespace

AtomicFile::AtomicFile(const QString& path, Links links)
    : path_(path), watch_(AwaitedFile(path)), file_(path, links) {
    if (!file_.Create()) {
        throw WriteError(path_, file_.errorString());
    }
}

void AtomicFile::Commit() {
    if (!file_.TakePlace()) {
        const FileError error = WriteError(path_, file_.errorString());
        if (file_.HasTakenPlace()) {
            throw UnflushedError(error.Text());
        }
        throw error;
    }
}

void WriteFileAtomically(const QString& path, QByteArrayView content, Links links) {
    AtomicFile file(path, links);
    file.Device().write(content.data(), content.size());
    file.Commit();
}

std::optional<QByteArray> ReadFileIfThere(const QString& path, qint64 maximumBytes, Links links) {
    const FollowedPath followed = FollowLinks(path, links);
    if (!followed.refusal.isEmpty()) {
        throw ReadError(path, followed.refusal);
    }
    QFile file;
    const Opening opening = OpenRegularFile(file, followed.path, LastPart::IsNoLink);
    if (opening.outcome == Opening::Outcome::Missing) {
        return std::nullopt;
    }
    if (!opening) {
        throw ReadError(path, opening.Reason());
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

QByteArray ReadWholeFile(const QString& path, qint64 maximumBytes, Links links) {
    std::optional<QByteArray> content = ReadFileIfThere(path, maximumBytes, links);
    if (!content) {
        throw ReadError(path, SystemReason(ENOENT));
    }
    return *std::move(content);
}

}  // namespace kadrona::platform
