#include "core/archive/ArchiveRebuild.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <algorithm>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveThumbnail.h"
#include "core/archive/KeepingSchema.h"
#include "imaging/reading/ImageReader.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// As much as anybody types: a stranger's photo may hold megabytes.
QString TextOfItem(const imaging::IptcItems& items, int dataset) {
    constexpr int ApplicationRecord = 2;
    constexpr qsizetype LongestText = 100'000;
    const int index = items.IndexOf(ApplicationRecord, dataset);
    return index < 0 ? QString() : items.Text(index).left(LongestText);
}

/// The other way round of SetIptcTags. The object name is the first line as it was.
QString TagsIn(const imaging::IptcItems& items) {
    constexpr int ObjectName = 5;
    constexpr int Keywords = 25;
    const QString first = TextOfItem(items, ObjectName);
    QString keywords = TextOfItem(items, Keywords);
    QStringList lines;
    if (!first.isEmpty() && keywords.startsWith(first + u',')) {
        lines.append(first);
        keywords.remove(0, first.size() + 1);
    }
    if (keywords.endsWith(u',')) {
        keywords.chop(1);
    }
    return TagText(keywords.isEmpty() ? lines : lines + keywords.split(u','));
}

/// A photo of the archive, its folder as it is stored, and the archive's.
struct LostPhoto {
    QFileInfo file;
    QString storedFolder;
    QString archiveFolder;
};

LostPhoto LostPhotoOf(const QString& path) {
    const QFileInfo file(path);
    const QFileInfo month(file.path());
    const QFileInfo year(month.path());
    return {file, StoredPath(year.fileName(), month.fileName()), year.path()};
}

/// When it was filed: the file's time, unless that is of another month than the folder, as after a
/// change of tags; then the month's last minute. Not after `now`, for a photo of the future makes
/// the clock look slow, but never before the folder's month.
QDateTime FiledOn(const LostPhoto& lost, const QDateTime& now) {
    QDateTime written = lost.file.lastModified();
    const QDate month =
        QDate::fromString(QString(lost.storedFolder).replace(u'\\', u'-') + u"-01"_s, Qt::ISODate);
    if (!month.isValid()) {
        return written;
    }
    const QDateTime begin = month.startOfDay();
    const QDateTime end(month.addMonths(1).addDays(-1), QTime(23, 59));
    const bool isOfMonth = written.date() >= month && written.date() <= end.date();
    return std::clamp(now, begin, isOfMonth ? written : end);
}

/// The number in the photo's name where no other photo has it, else the next one. Nothing where a
/// record has the photo by now: another workplace was just filing it.
std::optional<qint64> NumberFor(ArchiveTable& table, const LostPhoto& lost) {
    const qint64 own = NumberInName(lost.file.fileName());
    const auto record = own > 0 ? table.Read(own) : std::nullopt;
    if (record && record->name == lost.file.fileName() && record->folder == lost.storedFolder) {
        return std::nullopt;
    }
    return own > 0 && (!record || record->name.isEmpty()) ? own : table.Insert();
}

/// Where it was cut of its original nobody knows.
std::optional<OriginalRecord> OriginalFor(const LostPhoto& lost, const QSet<QString>& named,
                                          const FileTick& tick) {
    OriginalRecord original{.folder = StoredPath(OriginalsFolder, lost.storedFolder),
                            .name = {},
                            .photo = {},
                            .rectangle = {},
                            .changes = {},
                            .file = {}};
    const QDir folder(StoredFolderPath(lost.archiveFolder, original.folder));
    for (const QString& name : folder.entryList({lost.file.completeBaseName() + u".*"_s},
                                                QDir::Files | QDir::NoSymLinks, QDir::Name)) {
        if (const auto digest = DigestOf(folder.filePath(name), tick);
            digest && !named.contains(StoredPath(original.folder, name))) {
            original.name = name;
            original.file = *digest;
            return original;
        }
    }
    return std::nullopt;
}

/// False where a record has the photo.
bool RebuildRecord(ArchiveTable& table, const QString& path, const QSet<QString>& named,
                   const QDateTime& now, const FileTick& tick) {
    const LostPhoto lost = LostPhotoOf(path);
    if (named.contains(StoredPath(lost.storedFolder, lost.file.fileName()))) {
        return false;
    }
    RequireOwnWay(path, lost.archiveFolder);
    const imaging::LoadedImage photo = imaging::ReadImageFile(path);
    const FiledFiles files{.photo = DigestOf(path, tick).value_or(FileDigest()),
                           .original = OriginalFor(lost, named, tick)};
    const auto id = NumberFor(table, lost);
    if (id) {
        table.Fill({.id = *id,
                    .name = lost.file.fileName(),
                    .type = {},
                    .created = FiledOn(lost, now),
                    .folder = lost.storedFolder,
                    .tags = TagsIn(photo.iptc)},
                   ArchiveThumbnail(photo.pixels), files);
    }
    return id.has_value();
}

/// No number that a photo has from before is given again, to nobody who files meanwhile either.
void RaiseLastNumber(store::Database& database, const QStringList& paths) {
    qint64 highest = 0;
    for (const QString& path : paths) {
        highest = std::max(highest, NumberInName(path));
    }
    store::Transaction transaction(database);
    database.RaiseLastNumber(u"ImgDB"_s, u"ID"_s, highest);
    transaction.Commit();
}

}  // namespace

Rebuilding RebuildRecords(store::Database& database, const QStringList& paths, const QDateTime& now,
                          const platform::Progress& progress) {
    CreateKeeping(database);
    RaiseLastNumber(database, paths);
    ArchiveTable table(database);
    const QSet<QString> named = NamedFiles(database);
    Rebuilding rebuilding;
    const platform::Progress answering =
        paths.isEmpty() ? progress
                        : WhileAnswering({LostPhotoOf(paths.front()).archiveFolder}, progress);
    for (const QString& path : paths) {
        const FileTick tick = [&] {
            answering(u"Datensätze werden wiederhergestellt …"_s, rebuilding.rebuilt,
                      static_cast<qint64>(paths.size()));
        };
        tick();
        try {
            rebuilding.rebuilt += RebuildRecord(table, path, named, now, tick) ? 1 : 0;
        } catch (const imaging::ReadError& error) {
            rebuilding.failures.append(error.Text());
        } catch (const platform::FileError& error) {
            rebuilding.failures.append(error.Text());
        }
    }
    return rebuilding;
}

}  // namespace kadrona::core
