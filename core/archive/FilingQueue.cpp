#include "core/archive/FilingQueue.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QUuid>
#include <filesystem>
#include <system_error>

#include "core/archive/ArchiveFiles.h"
#include "core/archive/ArchiveOriginals.h"
#include "platform/AtomicFile.h"
#include "platform/FolderListing.h"
#include "platform/Paths.h"
#include "platform/PropertyFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString PhotoSection = u"Photo"_s;
const QString OriginalSection = u"Original"_s;
/// What is known of a photo; written last and removed first: with it the photo waits.
constexpr QStringView KnowledgeExtension = u".ini";
constexpr QStringView PhotoExtension = u".jpg";
constexpr QStringView ThumbnailExtension = u".thumbnail.jpg";

void WriteOriginal(platform::PropertyFile& file, const OriginalRecord& original) {
    const auto write = [&](const char* property, int value) {
        file.WriteInteger(OriginalSection, QString::fromLatin1(property), value);
    };
    file.WriteText(OriginalSection, u"Path"_s, StoredPath(original.folder, original.name));
    file.WriteText(OriginalSection, u"Changes"_s, original.changes);
    write("PhotoWidth", original.photo.width());
    write("PhotoHeight", original.photo.height());
    write("Left", original.rectangle.x());
    write("Top", original.rectangle.y());
    write("Width", original.rectangle.width());
    write("Height", original.rectangle.height());
}

}  // namespace

QString FilingQueue::UsersFolder() {
    return platform::JoinPath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
                              u"Veltmark/Kadrona/Archivwarteschlange");
}

QString FilingQueue::PathOf(const QString& name, QStringView extension) const {
    return platform::JoinPath(folder_, name + extension.toString());
}

void FilingQueue::Add(const WaitingPhoto& photo) const {
    platform::CreateFolder(folder_);  // where it cannot, the first file says so
    QFile::setPermissions(folder_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString name = photo.created.toString(u"yyyyMMdd-HHmmsszzz-"_s) +
                         QUuid::createUuid().toString(QUuid::Id128).left(8);
    QStringList written;
    auto takeBack = qScopeGuard([&] {
        for (const QString& path : written) {
            QFile::remove(path);
        }
    });
    const auto write = [&](QStringView extension, const QByteArray& content) {
        written.append(PathOf(name, extension));
        platform::WriteFileAtomically(written.last(), content);
    };
    write(PhotoExtension, photo.photo);
    write(ThumbnailExtension, photo.thumbnail);
    platform::PropertyFile file(PathOf(name, KnowledgeExtension));
    file.WriteText(PhotoSection, u"ArchiveFolder"_s, photo.archiveFolder);
    file.WriteText(PhotoSection, u"Template"_s, photo.templateName);
    file.WriteText(PhotoSection, u"Tags"_s, photo.tags);
    file.WriteText(PhotoSection, u"Created"_s, photo.created.toString(Qt::ISODateWithMs));
    if (photo.original) {
        const OriginalRecord original =
            FileOriginal(*photo.original, folder_, {}, name + u".jpg"_s);
        written.append(StoredFolderPath(folder_, StoredPath(original.folder, original.name)));
        WriteOriginal(file, original);
    }
    // First of what is taken back: nothing that has no files may wait.
    written.prepend(PathOf(name, KnowledgeExtension));
    file.Save();
    takeBack.dismiss();
}

QStringList FilingQueue::Waiting() const {
    QStringList names;
    for (const QString& entry : platform::FolderEntries(folder_)) {
        if (entry.endsWith(KnowledgeExtension) && !entry.startsWith(u'.')) {
            names.append(entry.chopped(KnowledgeExtension.size()));
        }
    }
    return names;
}

WaitingPhoto FilingQueue::Read(const QString& name) const {
    constexpr qint64 LargestPhoto = qint64{256} << 20;
    constexpr qint64 LargestThumbnail = qint64{16} << 20;
    WaitingPhoto waiting = ReadKnowledge(name);
    waiting.photo = platform::ReadWholeFile(PhotoFile(name), LargestPhoto);
    waiting.thumbnail = platform::ReadWholeFile(PathOf(name, ThumbnailExtension), LargestThumbnail);
    return waiting;
}

QString FilingQueue::PhotoFile(const QString& name) const {
    return PathOf(name, PhotoExtension);
}

WaitingPhoto FilingQueue::ReadKnowledge(const QString& name) const {
    const platform::PropertyFile file(PathOf(name, KnowledgeExtension));
    const auto text = [&](const char* property) {
        return file.ReadText(PhotoSection, QString::fromLatin1(property)).value_or(QString());
    };
    return {.archiveFolder = text("ArchiveFolder"),
            .templateName = text("Template"),
            .tags = text("Tags"),
            .created = QDateTime::fromString(text("Created"), Qt::ISODateWithMs),
            .photo = {},
            .thumbnail = {},
            .original = OriginalOf(file)};
}

std::optional<OriginalToKeep> FilingQueue::OriginalOf(const platform::PropertyFile& file) const {
    const auto path = file.ReadText(OriginalSection, u"Path"_s);
    if (!path || !IsInsideArchive(StoredFolderPath(folder_, *path), folder_)) {
        return {};
    }
    const auto number = [&](const char* property) {
        return file.ReadInteger(OriginalSection, QString::fromLatin1(property)).value_or(0);
    };
    OriginalToKeep original;
    original.file = StoredFolderPath(folder_, *path);
    original.bytes = QFileInfo(original.file).size();
    original.modified = QFileInfo(original.file).lastModified();
    original.size = {number("PhotoWidth"), number("PhotoHeight")};
    original.rectangle = {number("Left"), number("Top"), number("Width"), number("Height")};
    original.changes = file.ReadText(OriginalSection, u"Changes"_s).value_or(QString());
    return original;
}

bool FilingQueue::Remove(const QString& name) const {
    const auto original = OriginalOf(platform::PropertyFile(PathOf(name, KnowledgeExtension)));
    const auto remove = [](const QString& path) {
        std::error_code error;
        std::filesystem::remove(QFile::encodeName(path).toStdString(), error);
        return !error;  // one that is not there is none
    };
    if (!remove(PathOf(name, KnowledgeExtension))) {
        return false;
    }
    bool gone = !original || remove(original->file);
    for (const QStringView extension : {PhotoExtension, ThumbnailExtension}) {
        gone = remove(PathOf(name, extension)) && gone;
    }
    return gone;
}

/// By the time of the file's entry: a copy has the time of what it is a copy of.
void FilingQueue::RemoveOrphans(const QDateTime& before) const {
    static const QRegularExpression ours(u"^[0-9]{8}-[0-9]{9}-[0-9a-f]{8}\\z"_s);
    const QStringList waiting = Waiting();
    QStringList orphans;
    platform::WalkFolder(folder_, [&](const platform::FoundFile& found) {
        const QFileInfo file(found.path);
        if (ours.match(file.baseName()).hasMatch() && !waiting.contains(file.baseName()) &&
            file.metadataChangeTime() < before) {
            orphans.append(file.filePath());
        }
    });
    for (const QString& orphan : orphans) {
        QFile::remove(orphan);
    }
}

}  // namespace kadrona::core
