#include "core/archive/ArchiveOriginals.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/KeepingSchema.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "store/Statement.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Of a file's name, as far as it is a usual one.
QString Extension(const QString& file) {
    static const QRegularExpression usual(u"^[a-z0-9]{1,5}$"_s);
    const QString extension = QFileInfo(file).suffix().toLower();
    return usual.match(extension).hasMatch() ? extension : u"bild"_s;
}

}  // namespace

std::optional<OriginalRecord> ReadOriginal(store::Database& database, qint64 id) {
    if (!HasKeeping(database)) {
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
    const bool hasFile = !original.file.isEmpty();
    OriginalRecord record{.folder = StoredPath(OriginalsFolder, monthFolder),
                          .name = QFileInfo(photoName).completeBaseName() + u'.' +
                                  (hasFile ? Extension(original.file) : u"jpg"_s),
                          .photo = original.size,
                          .rectangle = original.rectangle,
                          .changes = original.changes,
                          .file = {}};
    const QString folder = StoredFolderPath(archiveFolder, record.folder);
    const QString path = platform::JoinPath(folder, record.name);
    if (!platform::CreateFolder(folder)) {
        throw platform::FileError(u"Der Ordner „%1“ kann nicht angelegt werden."_s.arg(folder));
    }
    if (hasFile) {
        CopyArchiveFile(original.file, path);
    } else {
        imaging::WriteImageFile(path, original.photo, {});
    }
    record.file = DigestOf(path).value_or(FileDigest());
    return record;
}

}  // namespace kadrona::core
