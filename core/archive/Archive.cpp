// The archive table, and photos going into it.

#include <QDir>
#include <QFileInfo>

#include "core/Data.h"
#include "core/UserInterface.h"
#include "core/archive/ArchiveSchema.h"
#include "core/archive/ArchiveTable.h"
#include "core/sheet/FileNaming.h"
#include "imaging/pixels/Processing.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/Error.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Whatever fails in the table store reaches the caller as a general error with the same text.
template <typename Operation>
void AsGeneralError(Operation operation) {
    try {
        operation();
    } catch (const std::exception& error) {
        throw platform::Error(QString::fromUtf8(error.what()));
    }
}

/// A month folder, which is stored with a backslash, as a path below the archive folder.
QString MonthPath(const QString& archiveFolder, QString monthFolder) {
    return platform::JoinPath(archiveFolder, monthFolder.replace(u'\\', QDir::separator()));
}

/// A JPEG 180 pixels high.
QByteArray Thumbnail(const imaging::Pixels& photo) {
    constexpr int Height = 180;
    const qint64 width = (qint64{photo.Width()} * Height + photo.Height() / 2) / photo.Height();
    const QSize size(static_cast<int>(qMax(width, qint64{1})), Height);
    return imaging::EncodeJpeg(imaging::Resampled(photo, size));
}

}  // namespace

bool TData::ConnectDB(const QString& folder) {
    AsGeneralError([&] {
        auto database = std::make_unique<store::Database>(folder);
        RequireKnownVersion(*database);
        archive_.reset();
        database_ = std::move(database);
    });
    return database_ != nullptr;
}

bool TData::CreateDB() {
    if (database_ == nullptr) {
        return false;
    }
    AsGeneralError([&] { CreateArchive(*database_); });
    return true;
}

ArchiveTable* TData::Archive() {
    if (database_ == nullptr || !database_->TableExists(u"ImgDB"_s)) {
        return nullptr;
    }
    if (archive_ == nullptr) {
        // The start could not complete the database where another program was writing to it.
        CreateArchive(*database_);
        archive_ = std::make_unique<ArchiveTable>(*database_);
    }
    return archive_.get();
}

/// The number that names the photo is only known once its record exists. A photo that cannot be
/// written leaves that record empty, so that no number is ever used again.
///
/// Numbers start anew where the database was lost, or go on from those of a backup; a second
/// computer that files in the same folder counts for itself. The numbers of photos that are there
/// already are left out: no photo is overwritten, and a database that comes back finds its own.
void TData::SaveImageToArchiv(imaging::LayeredImage& image, const QString& archiveFolder,
                              const QString& tags, const QString& objectName) {
    ArchiveTable* table = Archive();
    if (table == nullptr) {
        return;
    }
    const QString monthFolder = GetMonthDir(nameSources_);
    const QString folder = MonthPath(archiveFolder, monthFolder);
    if (QFileInfo(archiveFolder).isDir() && !platform::CreateFolder(folder)) {
        return;
    }
    const imaging::Pixels photo = image.Photo();
    const auto nameOf = [&](qint64 id) { return GetArchivFileName(id, nameSources_) + u".jpg"_s; };
    currentRecord_ = table->Insert([&](qint64 id) {
        const QFileInfo older(platform::JoinPath(folder, nameOf(id)));
        return older.isFile() || older.isSymLink();
    });
    const QString fileName = nameOf(currentRecord_);
    SaveIptcToImage(image, objectName, tags);
    imaging::WriteImageFile(platform::JoinPath(folder, fileName), photo, image.Resolution(),
                            {{}, image.Iptc().Own()});
    table->Fill({.id = currentRecord_,
                 .name = fileName,
                 .type = templateName_,
                 .created = nameSources_.now(),
                 .folder = monthFolder,
                 .tags = tags},
                Thumbnail(photo));
}

void TData::ImgTagSearch(const QString& text) {
    if (ArchiveTable* table = Archive()) {
        const QString quoted = u'\'' + QString(text).replace(u"'"_s, u"''"_s) + u'\'';
        table->SetFilter(text.isEmpty() ? QString()
                                        : u"TEXTSEARCH("_s + quoted + u" IN ImgTags)"_s);
    }
}

QString TData::GetFileNameFromRecord(const QString& archiveFolder) {
    ArchiveTable* table = Archive();
    const ArchiveRecord record =
        table ? table->Read(currentRecord_).value_or(ArchiveRecord()) : ArchiveRecord();
    QString path =
        platform::JoinPath(MonthPath(DelLastBackslash(archiveFolder), record.folder), record.name);
    if (QFileInfo(path).isFile()) {
        return path;
    }
    ui_.ShowMessage(u"Datei "_s + path + u" konnte nicht gefunden werden!"_s);
    return {};
}

}  // namespace kadrona::core
