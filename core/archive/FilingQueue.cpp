#include "core/archive/FilingQueue.h"

#include <QDir>
#include <QStandardPaths>
#include <QUuid>

#include "platform/AtomicFile.h"
#include "platform/Paths.h"
#include "platform/PropertyFile.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

const QString PhotoSection = u"Photo"_s;
/// What is known of a photo; written last and removed first: with it the photo waits.
constexpr QStringView KnowledgeExtension = u".ini";
constexpr QStringView PhotoExtension = u".jpg";
constexpr QStringView ThumbnailExtension = u".thumbnail.jpg";

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
    platform::WriteFileAtomically(PathOf(name, PhotoExtension), photo.photo);
    platform::WriteFileAtomically(PathOf(name, ThumbnailExtension), photo.thumbnail);
    platform::PropertyFile file(PathOf(name, KnowledgeExtension));
    file.WriteText(PhotoSection, u"ArchiveFolder"_s, photo.archiveFolder);
    file.WriteText(PhotoSection, u"Template"_s, photo.templateName);
    file.WriteText(PhotoSection, u"Tags"_s, photo.tags);
    file.WriteText(PhotoSection, u"Created"_s, photo.created.toString(Qt::ISODateWithMs));
    file.Save();
}

QStringList FilingQueue::Waiting() const {
    QStringList names =
        QDir(folder_).entryList({u"*"_s + KnowledgeExtension.toString()}, QDir::Files, QDir::Name);
    for (QString& name : names) {
        name.chop(KnowledgeExtension.size());
    }
    return names;
}

WaitingPhoto FilingQueue::Read(const QString& name) const {
    constexpr qint64 LargestPhoto = qint64{256} << 20;
    constexpr qint64 LargestThumbnail = qint64{16} << 20;
    const platform::PropertyFile file(PathOf(name, KnowledgeExtension));
    const auto text = [&](const char* property) {
        return file.ReadText(PhotoSection, QString::fromLatin1(property)).value_or(QString());
    };
    return {
        .archiveFolder = text("ArchiveFolder"),
        .templateName = text("Template"),
        .tags = text("Tags"),
        .created = QDateTime::fromString(text("Created"), Qt::ISODateWithMs),
        .photo = platform::ReadWholeFile(PathOf(name, PhotoExtension), LargestPhoto),
        .thumbnail = platform::ReadWholeFile(PathOf(name, ThumbnailExtension), LargestThumbnail)};
}

void FilingQueue::Remove(const QString& name) const {
    for (const QStringView extension : {KnowledgeExtension, PhotoExtension, ThumbnailExtension}) {
        if (!QFile::remove(PathOf(name, extension))) {
            return;
        }
    }
}

}  // namespace kadrona::core
