#include "core/sheet/SheetTray.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <algorithm>
#include <filesystem>

#include "core/sheet/PaperLayout.h"
#include "core/sheet/PaperSize.h"
#include "imaging/reading/ImageReader.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/FolderLock.h"
#include "platform/HarmlessText.h"
#include "platform/Paths.h"
#include "platform/SystemReason.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr qint64 MostListBytes = 1'000'000;
/// A metre.
constexpr int LongestSide = 1'000'000;

const QString ListName = u"Sammelblatt.json"_s;

QJsonObject ObjectOf(const CollectedItem& item, const QString& file) {
    return {{u"file"_s, file},
            {u"width"_s, item.size.width()},
            {u"height"_s, item.size.height()},
            {u"document"_s, item.document},
            {u"name"_s, item.name},
            {u"count"_s, item.count}};
}

/// The damaged lists of a lifetime.
constexpr int MostKeptLists = 100;

/// Gives a file a name that is free. Throws platform::FileError.
QString SetAside(const QString& path, const QString& base, const QString& extension) {
    QFile file(path);
    for (int number = 1; number <= MostKeptLists; ++number) {
        QString aside = base + u'-' + QString::number(number) + extension;
        if (QFileInfo::exists(aside)) {
            continue;
        }
        if (!file.rename(aside)) {
            break;
        }
        return aside;
    }
    throw platform::FileError(
        u"Die beschädigte Liste „%1“ des Sammelblatts kann nicht umbenannt "
        u"werden: %2."_s.arg(path, platform::SystemReason(file)));
}

bool MakesSense(const ListedItem& listed) {
    static const QRegularExpression form(u"^bild[0-9]{1,9}\\.png\\z"_s);
    const CollectedItem& item = listed.item;
    return form.match(listed.file).hasMatch() && !item.size.isEmpty() &&
           std::max(item.size.width(), item.size.height()) <= LongestSide && item.count >= 1 &&
           item.count <= MostCopies;
}

}  // namespace

std::vector<ListedItem> ParseTrayList(const QByteArray& json) {
    QJsonParseError failure;
    const QJsonDocument document = QJsonDocument::fromJson(json, &failure);
    if (failure.error != QJsonParseError::NoError) {
        throw DamagedList(u"Sie ist ab Zeichen %1 kein JSON"_s.arg(failure.offset + 1));
    }
    if (!document.isArray()) {
        throw DamagedList(u"Sie enthält keine Liste"_s);
    }
    std::vector<ListedItem> items;
    QSet<QString> files;
    for (const QJsonValue value : document.array()) {
        const QJsonObject object = value.toObject();
        ListedItem listed;
        listed.file = object[u"file"_s].toString();
        listed.item.size = {object[u"width"_s].toInt(), object[u"height"_s].toInt()};
        listed.item.document = platform::HarmlessLine(object[u"document"_s].toString());
        listed.item.name = platform::HarmlessLine(object[u"name"_s].toString());
        listed.item.count = object[u"count"_s].toInt();
        if (MakesSense(listed) && !files.contains(listed.file)) {
            files.insert(listed.file);
            items.push_back(std::move(listed));
        }
    }
    return items;
}

std::optional<size_t> SheetTray::Content::IndexOf(const QString& file) const {
    const auto found = std::ranges::find(files, file);
    return found == files.end() ? std::nullopt
                                : std::optional(static_cast<size_t>(found - files.begin()));
}

bool SheetTray::Content::CouldNotRead(const QString& file) const {
    return std::ranges::any_of(unread,
                               [&](const auto& listed) { return listed.second.file == file; });
}

void SheetTray::Content::Remove(size_t index) {
    items.erase(items.begin() + static_cast<ptrdiff_t>(index));
    files.erase(files.begin() + static_cast<ptrdiff_t>(index));
}

void SheetTray::Load() {
    Take(Unread::TryAgain);
}

void SheetTray::Follow() {
    Take(Unread::LeaveOut);
}

void SheetTray::Take(Unread unread) {
    try {
        content_ = Read(unread);
    } catch (...) {
        content_ = {};
        throw;
    }
}

/// The folder lies in the data folder, which accounts may share: another one's link would have this
/// user's rights read and write wherever it leads.
QString SheetTray::PathOf(const QString& file) const {
    const platform::FollowedPath followed =
        platform::FollowLinks(platform::JoinPath(folder_, file), platform::Links::Own);
    if (!followed.refusal.isEmpty()) {
        throw platform::FileError(
            u"Das Sammelblatt im Ordner „%1“ kann nicht benutzt werden: %2."_s.arg(
                folder_, followed.refusal));
    }
    return followed.path;
}

std::vector<ListedItem> SheetTray::Listed(const QByteArray& json) const {
    try {
        return ParseTrayList(json);
    } catch (const DamagedList& damage) {
        throw DamagedList(u"Die Liste „%1“ des Sammelblatts ist beschädigt: %2."_s.arg(
            PathOf(ListName), damage.Text()));
    }
}

/// Pictures that are known already are not read again.
SheetTray::Content SheetTray::Read(Unread unread) const {
    Content content;
    const auto list =
        platform::ReadFileIfThere(PathOf(ListName), MostListBytes, platform::Links::Own);
    if (!list) {
        return content;
    }
    const QDeadlineTimer end(longestReading_);
    qint64 room = MostCollectedPixels;
    for (ListedItem& listed : Listed(*list)) {
        if (unread == Unread::LeaveOut && content_.CouldNotRead(listed.file)) {
            content.unread.emplace(content.items.size(), std::move(listed));
            content.failure = content_.failure;
            continue;
        }
        try {
            listed.item.picture = PictureOf(listed, room, end);
            const imaging::Pixels& picture = listed.item.picture;
            room -= std::min(room, qint64{picture.Width()} * picture.Height());
        } catch (const platform::Error& error) {
            std::error_code unknown;
            const QByteArray path = QFile::encodeName(platform::JoinPath(folder_, listed.file));
            if (std::filesystem::symlink_status(path.toStdString(), unknown).type() !=
                std::filesystem::file_type::not_found) {
                content.unread.emplace(content.items.size(), std::move(listed));
                content.failure =
                    u"Ein Bild des Sammelblatts im Ordner „%1“ wird nicht gezeigt. %2"_s.arg(
                        folder_, error.Text());
            }
            continue;
        }
        content.items.push_back(std::move(listed.item));
        content.files.push_back(listed.file);
    }
    return content;
}

imaging::Pixels SheetTray::PictureOf(const ListedItem& listed, qint64 room,
                                     const QDeadlineTimer& end) const {
    if (const auto known = content_.IndexOf(listed.file)) {
        return content_.items[*known].picture;
    }
    if (end.hasExpired()) {
        throw platform::Error(u"Die Bilder zu lesen, dauert zu lange."_s);
    }
    return imaging::ReadImageFile(PathOf(listed.file), {.maximumPixels = room}).pixels;
}

void SheetTray::Save(const Content& content) const {
    QJsonArray list;
    auto unread = content.unread.begin();
    for (size_t i = 0; i <= content.items.size(); ++i) {
        const bool isLast = i == content.items.size();
        for (; unread != content.unread.end() && (isLast || unread->first <= i); ++unread) {
            list.append(ObjectOf(unread->second.item, unread->second.file));
        }
        if (!isLast) {
            list.append(ObjectOf(content.items[i], content.files[i]));
        }
    }
    platform::WriteFileAtomically(PathOf(ListName), QJsonDocument(list).toJson(),
                                  platform::Links::Own);
}

/// A damaged list must not keep the tray from being used for ever, nor be lost.
SheetTray::Content SheetTray::ReadOrSetAside() const {
    try {
        return Read(Unread::LeaveOut);
    } catch (const DamagedList& damage) {
        const QString aside =
            SetAside(PathOf(ListName), PathOf(u"Sammelblatt-beschädigt"_s), u".json"_s);
        throw platform::Error(
            damage.Text() +
            u" Sie heißt jetzt „%1“; die Bilder liegen noch daneben. Wiederholen "
            u"Sie den Schritt, um ein neues Sammelblatt zu beginnen."_s.arg(aside));
    }
}

void SheetTray::Change(const std::function<void(Content&)>& change) {
    const platform::FolderLock lock(PathOf({}));
    Content content = ReadOrSetAside();
    change(content);
    try {
        Save(content);
    } catch (const platform::UnflushedError&) {
        content_ = std::move(content);
        throw;
    }
    content_ = std::move(content);
}

void SheetTray::ChangeItem(size_t index,
                           const std::function<void(Content&, size_t index)>& change) {
    const QString file = content_.files.at(index);
    Change([&](Content& content) {
        if (const auto now = content.IndexOf(file)) {
            change(content, *now);
        }
    });
}

/// What could not be read again at the next start is not taken.
void SheetTray::RequireRoom(const imaging::Pixels& picture) const {
    qint64 pixels = qint64{picture.Width()} * picture.Height();
    for (const CollectedItem& item : content_.items) {
        pixels += qint64{item.picture.Width()} * item.picture.Height();
    }
    if (pixels > MostCollectedPixels) {
        throw platform::Error(
            u"Das Sammelblatt ist voll: Mit diesem Bild hätten seine Bilder mehr als %1 Millionen "
            u"Pixel."_s.arg(MostCollectedPixels / 1'000'000));
    }
}

/// By chance: a number that was free again would name another program's picture of before.
QString SheetTray::NewFile() const {
    constexpr int Numbers = 1'000'000'000;
    QString file;
    do {
        file = u"bild%1.png"_s.arg(QRandomGenerator::global()->bounded(Numbers));
    } while (QFile::exists(PathOf(file)));
    return file;
}

void SheetTray::Add(CollectedItem item) {
    // Where the data folder itself is gone, its disk may be; what is put there now is hidden later.
    const QString above = QFileInfo(folder_).path();
    if (!QFileInfo(above).isDir()) {
        throw platform::FileError(u"Der Ordner „%1“ ist nicht erreichbar."_s.arg(above));
    }
    platform::RequireFolder(folder_);
    item.picture = KeptPicture(item, {HighestCollectedResolution});
    RequireRoom(item.picture);
    const QString file = NewFile();
    const QString path = PathOf(file);
    imaging::WriteImageFile(path, item.picture, {});
    try {
        Change([&](Content& content) {
            content.items.push_back(std::move(item));
            content.files.push_back(file);
        });
    } catch (const platform::UnflushedError&) {
        throw;
    } catch (...) {
        QFile::remove(path);
        throw;
    }
}

void SheetTray::SetCount(size_t index, int count) {
    ChangeItem(index, [&](Content& content, size_t now) {
        content.items[now].count = std::clamp(count, 1, MostCopies);
    });
}

void SheetTray::Move(size_t from, size_t to) {
    const QString target = content_.files.at(std::min(to, content_.files.size() - 1));
    ChangeItem(from, [&](Content& content, size_t now) {
        const size_t place = content.IndexOf(target).value_or(now);
        CollectedItem item = std::move(content.items[now]);
        const QString file = content.files[now];
        content.Remove(now);
        const auto offset = static_cast<ptrdiff_t>(place);
        content.items.insert(content.items.begin() + offset, std::move(item));
        content.files.insert(content.files.begin() + offset, file);
    });
}

void SheetTray::Remove(size_t index) {
    TakeOut({{content_.files.at(index), MostCopies}});
}

void SheetTray::Clear() {
    std::vector<TrayCopies> all;
    for (const QString& file : content_.files) {
        all.push_back({file, MostCopies});
    }
    TakeOut(all);
}

std::vector<TrayCopies> SheetTray::CopiesOn(const CollectedLayout& layout) const {
    std::vector<TrayCopies> copies;
    for (size_t i = 0; i < content_.files.size(); ++i) {
        copies.push_back({content_.files[i], content_.items[i].count - layout.missing.at(i)});
    }
    return copies;
}

void SheetTray::TakeOut(const std::vector<TrayCopies>& printed) {
    QStringList done;
    const auto take = [&](Content& content) {
        for (const TrayCopies& copies : printed) {
            const auto index = content.IndexOf(copies.file);
            if (!index || copies.count == 0) {
                continue;
            }
            CollectedItem& item = content.items[*index];
            item.count -= copies.count;
            if (item.count <= 0) {
                content.Remove(*index);
                done.append(copies.file);
            }
        }
    };
    try {
        Change(take);
    } catch (const platform::UnflushedError&) {
        RemoveFiles(done);  // the list is written all the same
        throw;
    }
    RemoveFiles(done);
}

/// Nothing lists them any more.
void SheetTray::RemoveFiles(const QStringList& names) const {
    QString failure;
    for (const QString& name : names) {
        QFile file(platform::JoinPath(folder_, name));
        if (!file.remove() && file.exists()) {
            failure =
                u"Ein Bild ist aus dem Sammelblatt genommen, aber seine Datei „%1“ konnte "
                u"nicht gelöscht werden: %2."_s.arg(file.fileName(), platform::SystemReason(file));
        }
    }
    if (!failure.isEmpty()) {
        throw platform::FileError(failure);
    }
}

}  // namespace kadrona::core
