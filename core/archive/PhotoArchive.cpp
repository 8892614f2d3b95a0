#include "core/archive/PhotoArchive.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveOriginals.h"
#include "core/archive/ArchiveSchema.h"
#include "core/archive/ArchiveThumbnail.h"
#include "core/archive/KeepingSchema.h"
#include "core/archive/Tags.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/FolderLock.h"
#include "platform/Paths.h"
#include "platform/SilenceWatch.h"
#include "platform/UniqueFile.h"
#include "store/Statement.h"
#include "store/StoreError.h"
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

/// The original of a photo that is being filed; it goes again unless it is kept.
class KeptOriginal {
 public:
    explicit KeptOriginal(QString archiveFolder) : archiveFolder_(std::move(archiveFolder)) {}
    KeptOriginal(const KeptOriginal&) = delete;
    KeptOriginal& operator=(const KeptOriginal&) = delete;
    ~KeptOriginal() {
        if (!path_.isEmpty()) {
            QFile::remove(path_);
        }
    }

    OriginalRecord File(const OriginalToKeep& original, const QString& monthFolder,
                        const QString& photoName) {
        OriginalRecord record = FileOriginal(original, archiveFolder_, monthFolder, photoName);
        path_ = StoredFolderPath(archiveFolder_, StoredPath(record.folder, record.name));
        return record;
    }
    void Keep() { path_.clear(); }

 private:
    QString archiveFolder_;
    QString path_;
};

/// Else the folders of years would be looked for in the root folder.
void RequireChosen(const QString& archiveFolder) {
    if (archiveFolder.isEmpty()) {
        throw platform::FileError(
            u"In den Einstellungen ist kein „Bildarchiv Verzeichnis“ angegeben."_s);
    }
}

}  // namespace

/// The file of a photo that is being filed. Its name is claimed exclusively, so that no other
/// program that files in the same folder gets it; the file goes again unless it is kept.
class PhotoArchive::ClaimedFile {
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

void PhotoArchive::Open(std::unique_ptr<store::Database> database) {
    RequireKnownVersion(*database);
    table_.reset();
    database_ = std::move(database);
    database_->WhileWaiting(whileWaiting_);
}

void PhotoArchive::WhileWaiting(const std::function<void()>& tick) {
    whileWaiting_ = !tick ? tick : [tick] {
        platform::SilenceWatch::NoteAnswer();  // it is told already
        tick();
    };
    if (database_ != nullptr) {
        database_->WhileWaiting(whileWaiting_);
    }
}

void PhotoArchive::Connect(const QString& folder) {
    server_.reset();
    table_.reset();
    database_.reset();  // what it holds may be what is in the way
    const platform::SilenceWatch watch(AwaitedArchive(folder));
    AsGeneralError([&] { Open(std::make_unique<store::SqliteDatabase>(folder)); });
}

void PhotoArchive::Connect(const store::ServerAddress& server) {
    server_ = server;
    table_.reset();
    database_.reset();
    AsGeneralError([&] { OpenServer(); });
}

void PhotoArchive::OpenServer(std::chrono::milliseconds connecting) {
    constexpr std::chrono::seconds BetweenTries(10);
    table_.reset();
    database_.reset();
    try {
        auto database = core::OpenServer(*server_, {.connecting = connecting});
        Open(std::move(database));
        CreateArchive(*database_);
        untold_ = true;
        nextTry_ = {};
    } catch (const store::StoreError& error) {
        database_.reset();
        whyAway_ = error.Text();
        refusal_ = std::current_exception();
        nextTry_.setRemainingTime(BetweenTries);
        throw;
    }
}

bool PhotoArchive::IsAway() const {
    return server_ && (database_ == nullptr || database_->IsLost());
}

bool PhotoArchive::IsBack(std::chrono::milliseconds connecting) {
    try {
        if (IsAway()) {
            OpenServer(connecting);
        }
        return true;
    } catch (const store::StoreError&) {
        return false;  // a wrong password has been said at the start, and is with each filing
    }
}

bool PhotoArchive::Create() {
    if (database_ == nullptr) {
        return false;
    }
    AsGeneralError([&] { CreateArchive(*database_); });
    return true;
}

ArchiveTable* PhotoArchive::Table() {
    if (IsAway()) {
        if (!nextTry_.hasExpired()) {
            std::rethrow_exception(refusal_);
        }
        OpenServer();
    }
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

store::Database& PhotoArchive::Database() {
    if (Table() == nullptr) {
        throw platform::Error(
            u"Das Bildarchiv ist nicht verfügbar, weil seine Datenbank nicht geöffnet werden "
            u"konnte."_s);
    }
    return *database_;
}

/// The number that names the photo is only known once its record exists. A photo that cannot be
/// written leaves that record empty, so that no number is ever used again.
///
/// Numbers start anew where the database was lost, or go on from those of a backup; a second
/// computer that files in the same folder counts for itself. The numbers of photos that are there
/// already are left out: no photo is overwritten, and a database that comes back finds its own.
Filing PhotoArchive::FileAs(const PhotoToFile& known, const NameSources& names,
                            const PhotoWriter& write, const QByteArray& thumbnail) {
    ArchiveTable* table = Table();
    if (table == nullptr) {
        return Filing::NoDatabase;
    }
    const platform::SilenceWatch watch(AwaitedArchive(known.archiveFolder));
    const QString monthFolder = GetMonthDir(names);
    const QString folder = StoredFolderPath(known.archiveFolder, monthFolder);
    const bool there = IsArchiveFolder(known.archiveFolder);
    RequireOwnWay(folder, known.archiveFolder);
    if (there && !platform::CreateFolder(folder)) {
        return Filing::NoFolder;
    }
    ClaimedFile file;
    const auto nameOf = [&](qint64 id) { return GetArchivFileName(id, names) + u".jpg"_s; };
    currentRecord_ = table->Insert([&](qint64 id) {
        return !known.archiveFolder.isEmpty() &&
               !file.Claim(platform::JoinPath(folder, nameOf(id)));
    });
    RequireChosen(known.archiveFolder);
    write(file.Path());
    CreateKeeping(*database_);
    FiledFiles files{.photo = DigestOf(file.Path()).value_or(FileDigest()), .original = {}};
    KeptOriginal kept(known.archiveFolder);
    if (known.original) {
        files.original = kept.File(*known.original, monthFolder, nameOf(currentRecord_));
    }
    table->Fill({.id = currentRecord_,
                 .name = nameOf(currentRecord_),
                 .type = known.templateName,
                 .created = names.now(),
                 .folder = monthFolder,
                 .tags = known.tags},
                thumbnail, files);
    kept.Keep();
    file.Keep();
    return Filing::Done;
}

Filing PhotoArchive::File(imaging::LayeredImage& image, const PhotoToFile& known) {
    const imaging::Pixels photo = image.Photo();
    bool tagged = false;
    const auto setTags = [&] {
        SetIptcTags(image, known.objectName, known.tags);
        tagged = true;
    };
    const auto write = [&](const QString& path) {
        setTags();
        imaging::WriteImageFile(path, photo, image.Resolution(), {{}, image.Iptc()});
    };
    // By its time a photo is known again whose record was written without an answer.
    NameSources names = names_;
    names.now = [now = names_.now()] { return now; };
    try {
        return FileAs(known, names, write, ArchiveThumbnail(photo));
    } catch (const store::ConnectionLost& lost) {
        whyAway_ = lost.Text();
        if (!tagged) {
            setTags();
        }
    }
    queue_.Add({.archiveFolder = known.archiveFolder,
                .templateName = known.templateName,
                .tags = known.tags,
                .created = names.now(),
                .photo = imaging::EncodeJpeg(photo, image.Resolution(), {{}, image.Iptc()}),
                .thumbnail = ArchiveThumbnail(photo),
                .original = known.original});
    return Filing::Waits;
}

QString PhotoArchive::WhyUnmounted(const QString& archiveFolder) {
    try {
        if (IsAway() || Table() == nullptr || !IsArchiveFolder(archiveFolder)) {
            return {};
        }
        // Something else may lie where the drive belongs.
        store::Statement newest(
            *database_,
            uR"(SELECT "ImgAblage" FROM "ImgDB" WHERE "ImgName" IS NOT NULL ORDER BY "ID" DESC LIMIT 1)"_s);
        const QString month = newest.Step() ? newest.Text(0) : QString();
        const QString reason = core::WhyUnmounted(*database_, archiveFolder);
        return !reason.isEmpty() || platform::IsFolder(StoredFolderPath(archiveFolder, month))
                   ? reason
                   : u"Im Ordner des Bildarchivs „%1“ fehlt „%2“, wo das neueste Foto liegt; ist "
                     u"sein "
                     u"Laufwerk verbunden?"_s.arg(archiveFolder, month);
    } catch (const store::ConnectionLost&) {
        return {};
    }
}

bool PhotoArchive::FinishFiling(const WaitingPhoto& waiting) {
    ArchiveTable* table = Table();
    if (table == nullptr || !database_->TableExists(u"ImgChecksum"_s)) {
        return false;
    }
    std::optional<ArchiveRecord> filed;
    store::Statement alike(*database_, uR"(SELECT "ID" FROM "ImgChecksum" WHERE "Sha256" = ?)"_s);
    alike.Bind(1, QString::fromLatin1(
                      QCryptographicHash::hash(waiting.photo, QCryptographicHash::Sha256).toHex()));
    while (!filed && alike.Step()) {
        filed = table->Read(alike.Integer(0));
        if (filed && filed->created != waiting.created) {
            filed.reset();
        }
    }
    if (!filed) {
        return false;
    }
    const platform::SilenceWatch watch(AwaitedArchive(waiting.archiveFolder));
    // The names are what the server answers.
    const auto pathOf = [&](const QString& folder, const QString& file) {
        QString path = StoredFolderPath(waiting.archiveFolder, StoredPath(folder, file));
        RequireArchiveFolder(waiting.archiveFolder);
        RequireOwnWay(path, waiting.archiveFolder);
        platform::CreateFolder(QFileInfo(path).path());  // where it cannot, the file says so
        return path;
    };
    // Without an answer the files were taken back.
    const QString photo = pathOf(filed->folder, filed->name);
    if (!platform::IsFile(photo)) {
        platform::WriteFileAtomically(photo, waiting.photo);
    }
    const auto kept = ReadOriginal(*database_, filed->id);
    const QString original = kept ? pathOf(kept->folder, kept->name) : QString();
    if (kept && waiting.original && !platform::IsFile(original)) {
        CopyArchiveFile(waiting.original->file, original, platform::Links::Own);
    }
    currentRecord_ = filed->id;
    return true;
}

Filing PhotoArchive::FileWaiting(const QString& name) {
    const platform::FolderLock lock(queue_.Folder());
    if (!queue_.Waiting().contains(name)) {
        return Filing::Done;  // by another program of the user
    }
    const WaitingPhoto waiting = queue_.Read(name);
    if (FinishFiling(waiting)) {
        queue_.Remove(name);
        return Filing::Done;
    }
    if (const QString reason = WhyUnmounted(waiting.archiveFolder); !reason.isEmpty()) {
        throw platform::FileError(reason);
    }
    NameSources names = names_;
    names.now = [&] { return waiting.created; };
    const Filing filing = FileAs(
        {.archiveFolder = waiting.archiveFolder,
         .templateName = waiting.templateName,
         .tags = waiting.tags,
         .objectName = {},
         .original = waiting.original},
        names, [&](const QString& path) { platform::WriteFileAtomically(path, waiting.photo); },
        waiting.thumbnail);
    if (filing == Filing::Done) {
        queue_.Remove(name);
    }
    return filing;
}

QString PhotoArchive::PathOfCurrent(const QString& archiveFolder) {
    ArchiveTable* table = Table();
    const ArchiveRecord record =
        table ? table->Read(currentRecord_).value_or(ArchiveRecord()) : ArchiveRecord();
    return platform::JoinPath(StoredFolderPath(DelLastBackslash(archiveFolder), record.folder),
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
