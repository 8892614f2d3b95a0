#include "core/archive/ArchiveOriginals.h"

#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>
#include <cerrno>

#include "core/archive/ArchiveFiles.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/SystemReason.h"
#include "platform/UniqueFile.h"
#include "store/Statement.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Of a file's name, as far as it is a usual one.
QString Extension(const QString& file) {
    static const QRegularExpression usual(u"^[a-z0-9]{1,5}\\z"_s);
    const QString extension = QFileInfo(file).suffix().toLower();
    return usual.match(extension).hasMatch() ? extension : u"bild"_s;
}

/// A new empty file: an original that is there already is another photo's.
QString ClaimedPath(const QString& folder, const QString& base, const QString& extension) {
    constexpr int MostTries = 100;
    for (int number = 1; number <= MostTries; ++number) {
        const QString title = number == 1 ? base : u"%1 (%2)"_s.arg(base).arg(number);
        QString path = platform::JoinPath(folder, title + u'.' + extension);
        const int handle = platform::CreateNewFile(path);
        if (handle >= 0) {
            close(handle);
            return path;
        }
        if (errno != EEXIST) {
            throw platform::FileError(u"Die Datei „%1“ konnte nicht geschrieben werden: %2."_s.arg(
                path, platform::SystemReason(errno)));
        }
    }
    throw platform::FileError(
        u"Im Ordner „%1“ ist für „%2“ kein Name mehr frei."_s.arg(folder, base));
}

/// Between opening and filing a card may have been changed for another one with the same names.
void RequireSameFile(const OriginalToKeep& original) {
    const QFileInfo file(original.file);
    if (original.file.isEmpty() || !file.isFile() || file.size() != original.bytes ||
        file.lastModified() != original.modified) {
        throw platform::FileError(
            u"Die Datei „%1“ ist nicht mehr die, die geöffnet wurde."_s.arg(original.file));
    }
}

}  // namespace

std::optional<OriginalRecord> ReadOriginal(store::Database& database, qint64 id) {
    if (!database.TableExists(u"ImgOriginal"_s)) {
        return std::nullopt;
    }
    store::Statement select(
        database,
        uR"(SELECT "Folder", "Name", "PhotoWidth", "PhotoHeight", "CutLeft", "CutTop",
                             "CutWidth", "CutHeight", "Changes", "Bytes", "Sha256"
                      FROM "ImgOriginal" WHERE "ID" = ?)"_s);
    if (!select.Bind(1, id).Step()) {
        return std::nullopt;
    }
    const auto number = [&](int column) { return static_cast<int>(select.Integer(column)); };
    return OriginalRecord{.folder = select.Text(0),
                          .name = select.Text(1),
                          .photo = {number(2), number(3)},
                          .rectangle = {number(4), number(5), number(6), number(7)},
                          .changes = select.Text(8),
                          .file = {select.Integer(9), select.Text(10)}};
}

void KeepOriginal(store::Database& database, qint64 id, const OriginalRecord& original) {
    store::Statement(database, uR"(DELETE FROM "ImgOriginal" WHERE "ID" = ?)"_s).Bind(1, id).Step();
    store::Statement(database,
                     uR"(INSERT INTO "ImgOriginal" ("ID", "Folder", "Name", "Bytes", "Sha256",
            "PhotoWidth", "PhotoHeight", "CutLeft", "CutTop", "CutWidth", "CutHeight", "Changes")
            VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?))"_s)
        .Bind(1, id)
        .Bind(2, original.folder)
        .Bind(3, original.name)
        .Bind(4, original.file.bytes)
        .Bind(5, original.file.sha256)
        .Bind(6, qint64{original.photo.width()})
        .Bind(7, qint64{original.photo.height()})
        .Bind(8, qint64{original.rectangle.x()})
        .Bind(9, qint64{original.rectangle.y()})
        .Bind(10, qint64{original.rectangle.width()})
        .Bind(11, qint64{original.rectangle.height()})
        .Bind(12, original.changes)
        .Step();
}

OriginalRecord FileOriginal(const OriginalToKeep& original, const QString& archiveFolder,
                            const QString& monthFolder, const QString& photoName) {
    OriginalRecord record{.folder = StoredPath(OriginalsFolder, monthFolder),
                          .name = {},
                          .photo = original.size,
                          .rectangle = original.rectangle,
                          .changes = original.changes,
                          .file = {}};
    const QString folder = StoredFolderPath(archiveFolder, record.folder);
    RequireOwnWay(folder, archiveFolder);
    platform::RequireFolder(folder);
    const QString base = QFileInfo(photoName).completeBaseName();
    const auto write = [&](const QString& extension, const auto& writeTo) {
        const QString path = ClaimedPath(folder, base, extension);
        auto clean = qScopeGuard([&] { QFile::remove(path); });
        writeTo(path);
        record.name = QFileInfo(path).fileName();
        record.file = DigestOf(path).value_or(FileDigest());
        clean.dismiss();
    };
    try {
        RequireSameFile(original);
        write(Extension(original.file), [&](const QString& path) {
            CopyArchiveFile(original.file, path, platform::Links::All);
            RequireSameFile(original);
        });
    } catch (const platform::FileError&) {
        if (original.photo.IsEmpty()) {
            throw;
        }
        write(u"jpg"_s,
              [&](const QString& path) { imaging::WriteImageFile(path, original.photo, {}); });
        record.changes = u"Stand vor dem Zuschneiden"_s;
    }
    return record;
}

}  // namespace kadrona::core
