#include "core/archive/PhotoArchive.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "core/archive/ArchiveSchema.h"
#include "core/archive/Tags.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/UniqueFile.h"
#include "store/sqlite/SqliteDatabase.h"

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

/// The file of a photo that is being filed. Its name is claimed exclusively, so that no other
/// program that files in the same folder gets it; the file goes again unless it is kept.
class ClaimedFile {
 public:
    ClaimedFile() = default;
    ClaimedFile(const ClaimedFile&) = delete;
    ClaimedFile& operator=(const ClaimedFile&) = delete;
    ~ClaimedFile() {
        if (claimed_) {
            QFile::remove(path_);
        }
    }

    /// False where there is a file of that name. Where none can be made either, writing the photo
    /// will say why.
    bool Claim(const QString& path) {
        path_ = path;
        const int handle = platform::CreateNewFile(path);
        claimed_ = handle >= 0;
        if (claimed_) {
            close(handle);
        }
        const QFileInfo older(path);
        return claimed_ || !(older.isFile() || older.isSymLink());
    }

    const QString& Path() const { return path_; }
    void Keep() { claimed_ = false; }

 private:
    QString path_;
    bool claimed_ = false;
};

}  // namespace

void PhotoArchive::Connect(const QString& folder) {
    AsGeneralError([&] {
        auto database = std::make_unique<store::SqliteDatabase>(folder);
        RequireKnownVersion(*database);
        table_.reset();
        database_ = std::move(database);
    });
}

bool PhotoArchive::Create() {
    if (database_ == nullptr) {
        return false;
    }
    AsGeneralError([&] { CreateArchive(*database_); });
    return true;
}

ArchiveTable* PhotoArchive::Table() {
    if (database_ == nullptr || !database_->TableExists(u"ImgDB"_s)) {
        return nullptr;
    }
    if (table_ == nullptr) {
        // The start could not complete the database where another program was writing to it.
        CreateArchive(*database_);
        table_ = std::make_unique<ArchiveTable>(*database_);
    }
    return table_.get();
}

/// The number that names the photo is only known once its record exists. A photo that cannot be
/// written leaves that record empty, so that no number is ever used again.
///
/// Numbers start anew where the database was lost, or go on from those of a backup; a second
/// computer that files in the same folder counts for itself. The numbers of photos that are there
/// already are left out: no photo is overwritten, and a database that comes back finds its own.
Filing PhotoArchive::File(imaging::LayeredImage& image, const PhotoToFile& known) {
    ArchiveTable* table = Table();
    if (table == nullptr) {
        return Filing::NoDatabase;
    }
    const QString monthFolder = GetMonthDir(names_);
    const QString folder = MonthPath(known.archiveFolder, monthFolder);
    if (QFileInfo(known.archiveFolder).isDir() && !platform::CreateFolder(folder)) {
        return Filing::NoFolder;
    }
    const imaging::Pixels photo = image.Photo();
    ClaimedFile file;
    const auto nameOf = [&](qint64 id) { return GetArchivFileName(id, names_) + u".jpg"_s; };
    currentRecord_ = table->Insert(
        [&](qint64 id) { return !file.Claim(platform::JoinPath(folder, nameOf(id))); });
    SetIptcTags(image, known.objectName, known.tags);
    imaging::WriteImageFile(file.Path(), photo, image.Resolution(), {{}, image.Iptc()});
    table->Fill({.id = currentRecord_,
                 .name = nameOf(currentRecord_),
                 .type = known.templateName,
                 .created = names_.now(),
                 .folder = monthFolder,
                 .tags = known.tags},
                Thumbnail(photo));
    file.Keep();
    return Filing::Done;
}

bool PhotoArchive::IsInside(const QString& path, const QString& archiveFolder) {
    const QString root = QDir::cleanPath(DelLastBackslash(archiveFolder));
    const QString clean = QDir::cleanPath(path);
    return clean == root || clean.startsWith(platform::JoinPath(root, {}));
}

QString PhotoArchive::PathOfCurrent(const QString& archiveFolder) {
    ArchiveTable* table = Table();
    const ArchiveRecord record =
        table ? table->Read(currentRecord_).value_or(ArchiveRecord()) : ArchiveRecord();
    return platform::JoinPath(MonthPath(DelLastBackslash(archiveFolder), record.folder),
                              record.name);
}

void PhotoArchive::Filter(const QString& text) {
    if (ArchiveTable* table = Table()) {
        const QString quoted = u'\'' + QString(text).replace(u"'"_s, u"''"_s) + u'\'';
        table->SetFilter(text.isEmpty() ? QString()
                                        : u"TEXTSEARCH("_s + quoted + u" IN ImgTags)"_s);
    }
}

}  // namespace kadrona::core
