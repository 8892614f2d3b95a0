#include "core/base/RecentPhotos.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <utility>

#include "platform/AtomicFile.h"
#include "platform/FolderLock.h"
#include "platform/Paths.h"
#include "platform/UserRegistry.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr qint64 MostBytes = qint64{2} << 20;
const QString KeepsKey = u"merken"_s;
const QString PhotosKey = u"fotos"_s;
const QString PathKey = u"pfad"_s;
const QString PictureKey = u"bild"_s;

/// An entry without a full path is left out.
QList<RecentPhoto> PhotosOf(const QJsonArray& entries) {
    QList<RecentPhoto> photos;
    for (const QJsonValue value : entries) {
        const QJsonObject entry = value.toObject();
        const QString path = entry.value(PathKey).toString();
        QByteArray picture = QByteArray::fromBase64(entry.value(PictureKey).toString().toLatin1());
        if (picture.size() > RecentPhotos::MostPictureBytes) {
            picture.clear();
        }
        if (path.startsWith(u'/') && photos.size() < RecentPhotos::MostPhotos) {
            photos.append({path, picture});
        }
    }
    return photos;
}

}  // namespace

QString RecentPhotos::DefaultPath() {
    return platform::JoinPath(platform::RegistryFolder(), u"Zuletzt.json");
}

RecentPhotos::RecentPhotos(QString path) : path_(std::move(path)) {
    Read();
}

void RecentPhotos::Read() {
    const auto bytes = platform::ReadFileIfThere(path_, MostBytes);
    const QJsonObject content = QJsonDocument::fromJson(bytes.value_or(QByteArray())).object();
    keeps_ = content.value(KeepsKey).toBool(true);
    photos_ = PhotosOf(content.value(PhotosKey).toArray());
}

void RecentPhotos::Add(RecentPhoto photo) {
    Change([&] {
        if (keeps_) {
            photos_.removeIf([&photo](const RecentPhoto& kept) { return kept.path == photo.path; });
            photos_.prepend(std::move(photo));
            photos_.resize(std::min(photos_.size(), MostPhotos));
        }
    });
}

void RecentPhotos::Clear() {
    Change([this] { photos_.clear(); });
}

void RecentPhotos::SetKeeps(bool keeps) {
    Change([this, keeps] {
        keeps_ = keeps;
        if (!keeps) {
            photos_.clear();
        }
    });
}

void RecentPhotos::Change(const std::function<void()>& change) {
    const QString folder = QFileInfo(path_).path();
    platform::CreateFolder(folder);  // where it cannot, locking says so
    const platform::FolderLock lock(folder);
    Read();
    change();
    Save();
}

void RecentPhotos::Save() const {
    QJsonArray entries;
    for (const RecentPhoto& photo : photos_) {
        entries.append(QJsonObject{{PathKey, photo.path},
                                   {PictureKey, QString::fromLatin1(photo.picture.toBase64())}});
    }
    platform::WriteFileAtomically(
        path_, QJsonDocument(QJsonObject{{KeepsKey, keeps_}, {PhotosKey, entries}}).toJson());
}

}  // namespace kadrona::core
