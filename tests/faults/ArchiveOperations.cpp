#include <QDir>
#include <QDirIterator>
#include <QFile>

#include "app/commandline/ArchiveCommand.h"
#include "core/archive/ArchiveDeletion.h"
#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveRetention.h"
#include "core/archive/ArchiveThumbnail.h"
#include "core/archive/ArchiveTransfer.h"
#include "core/archive/KeepingSchema.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/Paths.h"
#include "store/sqlite/SqliteDatabase.h"
#include "tests/faults/Module.h"
#include "tests/faults/Operations.h"
#include "tests/support/ArchiveDatabase.h"

using namespace Qt::StringLiterals;

namespace kadrona::testing {

namespace {

using Task = app::ArchiveRequest::Task;

const QString LostPhoto = u"2026\\03\\2026_03_00009.jpg"_s;

core::OriginalToKeep Original(const Module& module) {
    const QFileInfo file(module.folder + u"/saved/Foto.png"_s);
    return {.file = file.filePath(),
            .bytes = file.size(),
            .modified = file.lastModified(),
            .photo = {},
            .size = {120, 160},
            .rectangle = {10, 10, 80, 103},
            .changes = u"gedreht"_s};
}

/// Who files says what became of it.
void Tell(Module& module, core::Filing filing) {
    if (filing != core::Filing::Done) {
        module.ui.messages.append(module.archive + u'.');
    }
}

void File(Module& module) {
    Tell(module, module.data.Archiving().File(module.image, {module.archive, u"Pass"_s, Tags,
                                                             u"Jürgen Groß"_s, Original(module)}));
}

void LetWait(Module& module) {
    const imaging::Pixels& photo = module.image.Photo();
    module.data.Archiving().Queue().Add({.archiveFolder = module.archive,
                                         .templateName = u"Pass"_s,
                                         .tags = Tags,
                                         .created = module.data.NameSources().now(),
                                         .photo = imaging::EncodeJpeg(photo),
                                         .thumbnail = core::ArchiveThumbnail(photo),
                                         .original = Original(module)});
}

void Delete(Module& module, const std::vector<qint64>& ids) {
    const core::Deletion deletion =
        core::DeleteRecords(module.data.ArchiveDatabase(), module.archive, ids,
                            module.data.NameSources().now(), platform::NoProgress);
    module.ui.messages += deletion.failures;
    core::CompactArchive(module.data.ArchiveDatabase(), platform::NoProgress);
}

void DeleteDue(Module& module) {
    store::Database& database = module.data.ArchiveDatabase();
    const QDate today = module.data.NameSources().now().date();
    core::SetRetentionMonths(database, 2);
    core::SetKeepUntil(database, {1}, today.addDays(1), today);
    Delete(module, core::FindDuePhotos(database, today.addDays(2)).ids);
}

Step Command(Task task, const char* folder = "", const char* search = "") {
    return [=](Module& module) {
        const QString target = *folder == 0 ? QString() : module.folder + QLatin1StringView(folder);
        const QString said = module.RunCommand([&](QTextStream& output, QTextStream& errors) {
            app::KeepArchive({task, module.archive, target, QString::fromUtf8(search)}, module.data,
                             output, errors);
        });
        if (said.contains(u"nicht gelesen"_s)) {
            module.ui.messages.append(module.folder + u'.');  // a finding names it
        }
    };
}

void Transfer(Module& module) {
    store::SqliteDatabase target(module.folder + u"/server"_s);
    core::TransferArchive(module.data.ArchiveDatabase(), target, platform::NoProgress);
}

void StoreServer(Module& module) {
    core::ArchiveServer server = core::StoredArchiveServer();
    server.address.host = u"server"_s;
    server.address.password += u'x';
    core::StoreArchiveServer(server);
    Q_UNUSED(module);
}

QStringList FilesIn(const QString& folder) {
    QStringList files;
    for (QDirIterator found(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         found.hasNext();) {
        files.append(QDir(folder).relativeFilePath(found.next()).replace(u'/', u'\\'));
    }
    return files;
}

/// Files of the queue that belong to none that waits, folders of an export that was given up.
QString LeftOvers(const QString& folder) {
    const core::FilingQueue queue;
    QStringList left = QDir(folder + u"/exported"_s).entryList({u"*(unv*"_s});
    for (const QString& file : FilesIn(queue.Folder())) {
        if (!queue.Waiting().contains(QFileInfo(file.section(u'\\', -1)).baseName())) {
            left.append(file);
        }
    }
    return left.join(u' ');
}

}  // namespace

void FillArchive(Module& module) {
    File(module);
    // Made by chance else, so that no two runs would leave the same.
    store::Database& archive = module.data.ArchiveDatabase();
    core::CreateKeeping(archive);
    archive.Execute(uR"(INSERT INTO "ImgKeeping" ("Name", "Value") VALUES ('Identity', 'a'))"_s);
    imaging::WriteImageFile(core::StoredFolderPath(module.archive, LostPhoto), module.image.Photo(),
                            {300});
    LetWait(module);
}

NamedSteps ArchiveSteps() {
    return {
        {"archiving", File},
        {"tags", [](Module& module) { module.data.Archive()->SetTags(1, u"Ö\r\n"_s); }},
        {"delete-photo", [](Module& module) { Delete(module, {1}); }},
        {"delete-due", DeleteDue},
        {"tags-in-photo",
         [](Module& module) {
             const QString photo = module.archive + u"/2026/03/2026_03_00001.jpg"_s;
             module.data.RewriteIptcToImage(photo, u"Ö"_s, u"Ö\r\n"_s);
         }},
        {"backup", Command(Task::BackUp, "/backup")},
        {"check", Command(Task::Check)},
        {"rebuild", Command(Task::Rebuild)},
        {"export", Command(Task::Export, "/exported", "Köln")},
        {"transfer", Transfer},
        {"wait", LetWait},
        {"file-waiting",
         [](Module& module) {
             core::PhotoArchive& archive = module.data.Archiving();
             for (const QString& name : archive.Queue().Waiting()) {
                 Tell(module, archive.FileWaiting(name));
             }
         }},
        {"server", StoreServer},
    };
}

QString ArchiveFault(const QString& folder) {
    const QString databaseFolder = folder + u"/common/Kadrona/Database"_s;
    if (!QFile::exists(databaseFolder + u"/KDRImageBase.db"_s)) {
        return {};
    }
    store::SqliteDatabase database(databaseFolder);
    QString fault = DatabaseFault(database) + LeftOvers(folder);
    if (!fault.isEmpty() || !database.TableExists(u"ImgTags_idx"_s)) {
        return fault;
    }
    if (QFile::exists(folder + u"/server/KDRImageBase.db"_s)) {  // one that was cut off goes on
        store::SqliteDatabase target(folder + u"/server"_s);
        core::TransferArchive(database, target, platform::NoProgress);
        fault = DatabaseFault(target);
    }
    core::CreateKeeping(database);  // a start that failed has none
    QStringList photos = FilesIn(folder + u"/archive"_s);
    QStringList recorded = core::NamedFiles(database).values();
    if (!recorded.contains(LostPhoto)) {
        photos.removeAll(LostPhoto);
    }
    // What a deletion could not remove is noted.
    for (const QString& path : Column(database, uR"(SELECT "Path" FROM "ImgRemoval")"_s)) {
        photos.removeAll(path);
    }
    photos.sort();
    recorded.sort();
    return photos == recorded
               ? fault
               : u"records: %1; photos: %2"_s.arg(recorded.join(u' '), photos.join(u' '));
}

}  // namespace kadrona::testing
