#include "core/archive/ArchiveRebuild.h"

#include <QFileInfo>
#include <algorithm>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveThumbnail.h"
#include "core/archive/KeepingSchema.h"
#include "imaging/reading/ImageReader.h"
#include "store/Transaction.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

QString TextOfItem(const imaging::IptcItems& items, int dataset) {
    constexpr int ApplicationRecord = 2;
    const int index = items.IndexOf(ApplicationRecord, dataset);
    return index < 0 ? QString() : items.Text(index);
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

/// The number in the photo's name where no record has it, else the next one.
qint64 NumberFor(ArchiveTable& table, const QString& name) {
    const qint64 own = name.section(u'_', 2).section(u'.', 0, 0).toLongLong();
    return own > 0 && !table.Read(own) ? own : table.Insert();
}

void RebuildRecord(ArchiveTable& table, const QString& path) {
    const imaging::LoadedImage photo = imaging::ReadImageFile(path);
    const FiledFiles files{.photo = DigestOf(path).value_or(FileDigest()), .original = {}};
    const QFileInfo file(path);
    const QString month = file.path().mid(file.path().lastIndexOf(u'/') + 1);
    const QString year = QFileInfo(QFileInfo(file.path()).path()).fileName();
    table.Fill({.id = NumberFor(table, file.fileName()),
                .name = file.fileName(),
                .type = {},
                .created = file.lastModified(),
                .folder = year + u'\\' + month,
                .tags = TagsIn(photo.iptc)},
               ArchiveThumbnail(photo.pixels), files);
}

}  // namespace

Rebuilding RebuildRecords(store::Database& database, const QStringList& paths,
                          const platform::Progress& progress) {
    CreateKeeping(database);
    ArchiveTable table(database);
    Rebuilding rebuilding;
    for (const QString& path : paths) {
        progress(u"Datensätze werden wiederhergestellt …"_s, rebuilding.rebuilt,
                 static_cast<qint64>(paths.size()));
        try {
            RebuildRecord(table, path);
            ++rebuilding.rebuilt;
        } catch (const imaging::ReadError& error) {
            rebuilding.failures.append(error.Text());
        } catch (const platform::FileError& error) {
            rebuilding.failures.append(error.Text());
        }
    }
    // No number that a photo has from before is given again.
    store::Transaction transaction(database);
    qint64 highest = 0;
    for (const QString& path : paths) {
        highest = std::max(highest, NumberInName(path));
    }
    database.RaiseLastNumber(u"ImgDB"_s, u"ID"_s, highest);
    transaction.Commit();
    return rebuilding;
}

}  // namespace kadrona::core
