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

QList<RecentPhoto> PhotosOf(const QJsonArray& entries) {
    QList<RecentPhoto> photos;
    for (const QJsonValue value : entries) {
        const QJsonObject entry = value.toObject();
        const QString path = entry.value(PathKey).toString();
        QByteArray picture = QByteArray::fromBase64(entry.value(PictureKey).toString().toLatin1());
        if (picture.size() > RecentPhotos::MostPictureBytes) {
            picture.clear();
        }
        const bool isFull = path.startsWith(u'/') && !path.contains(QChar::Null);
        if (isFull && photos.size() < RecentPhotos::MostPhotos) {
            photos.append({path, picture});
        }
    }
    return photos;
}

}  // namespace

RecentList ParseRecentList(const QByteArray& json) {
    const QJsonObject content = QJsonDocument::fromJson(json).object();
    return {PhotosOf(content.value(PhotosKey).toArray()), content.value(KeepsKey).toBool(true)};
}

QByteArray RecentListBytes(const RecentList& list) {
    QJsonArray entries;
    for (const RecentPhoto& photo : list.photos) {
        entries.append(QJsonObject{{PathKey, photo.path},
                                   {PictureKey, QString::fromLatin1(photo.picture.toBase64())}});
    }
    return QJsonDocument(QJsonObject{{KeepsKey, list.keeps}, {PhotosKey, entries}}).toJson();
}

QString RecentPhotos::DefaultPath() {
    return platform::JoinPath(platform::RegistryFolder(), u"Zuletzt.json");
}

RecentPhotos::RecentPhotos(QString path) : path_(std::move(path)) {
    Read();
}

void RecentPhotos::Read() {
    list_ = ParseRecentList(platform::ReadFileIfThere(path_, MostBytes).value_or(QByteArray()));
}

void RecentPhotos::Add(RecentPhoto photo) {
    Change([&] {
        if (list_.keeps) {
            list_.photos.removeIf(
                [&photo](const RecentPhoto& kept) { return kept.path == photo.path; });
            list_.photos.prepend(std::move(photo));
            list_.photos.resize(std::min(list_.photos.size(), MostPhotos));
        }
    });
}

void RecentPhotos::Clear() {
    Change([this] { list_.photos.clear(); });
}

void RecentPhotos::SetKeeps(bool keeps) {
    Change([this, keeps] {
        list_.keeps = keeps;
        if (!keeps) {
            list_.photos.clear();
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
    platform::WriteFileAtomically(path_, RecentListBytes(list_));
}

}  // namespace kadrona::core
