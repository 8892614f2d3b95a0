#include "core/sheet/SheetTray.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <algorithm>

#include "core/sheet/PaperLayout.h"
#include "core/sheet/PaperSize.h"
#include "imaging/pixels/NewImage.h"
#include "imaging/pixels/Resampling.h"
#include "imaging/reading/ImageReader.h"
#include "imaging/writing/ImageWriter.h"
#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/HarmlessText.h"
#include "platform/Paths.h"

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

bool MakesSense(const ListedItem& listed) {
    static const QRegularExpression form(u"^bild[0-9]{1,9}\\.png$"_s);
    const CollectedItem& item = listed.item;
    return form.match(listed.file).hasMatch() && !item.size.isEmpty() &&
           std::max(item.size.width(), item.size.height()) <= LongestSide && item.count >= 1 &&
           item.count <= MostCopies;
}

/// The picture in pixels of its own: a cut would keep its whole photo in memory.
imaging::Pixels KeptPicture(const CollectedItem& item) {
    const QSize finest(PixelsOf(item.size.width(), HighestCollectedResolution),
                       PixelsOf(item.size.height(), HighestCollectedResolution));
    if (item.picture.Width() > finest.width()) {
        return imaging::Resampled(item.picture, finest);
    }
    return imaging::Pixels(imaging::RequireAllocated(item.picture.ToImage().copy()));
}

}  // namespace

std::vector<ListedItem> ParseTrayList(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray()) {
        throw platform::Error(u"Die Liste des Sammelblatts ist beschädigt."_s);
    }
    std::vector<ListedItem> items;
    for (const QJsonValue value : document.array()) {
        const QJsonObject object = value.toObject();
        ListedItem listed;
        listed.file = object[u"file"_s].toString();
        listed.item.size = {object[u"width"_s].toInt(), object[u"height"_s].toInt()};
        listed.item.document = platform::HarmlessLine(object[u"document"_s].toString());
        listed.item.name = platform::HarmlessLine(object[u"name"_s].toString());
        listed.item.count = object[u"count"_s].toInt();
        if (MakesSense(listed)) {
            items.push_back(std::move(listed));
        }
    }
    return items;
}

void SheetTray::Load() {
    items_.clear();
    files_.clear();
    const auto list =
        platform::ReadFileIfThere(platform::JoinPath(folder_, ListName), MostListBytes);
    if (!list) {
        return;
    }
    for (ListedItem& listed : ParseTrayList(*list)) {
        try {
            listed.item.picture =
                imaging::ReadImageFile(platform::JoinPath(folder_, listed.file)).pixels;
        } catch (const platform::Error&) {
            continue;
        }
        items_.push_back(std::move(listed.item));
        files_.push_back(listed.file);
    }
}

void SheetTray::Save(const std::vector<CollectedItem>& items, const std::vector<QString>& files) {
    QJsonArray list;
    for (size_t i = 0; i < items.size(); ++i) {
        list.append(ObjectOf(items[i], files[i]));
    }
    platform::WriteFileAtomically(platform::JoinPath(folder_, ListName),
                                  QJsonDocument(list).toJson());
}

QString SheetTray::NewFile() const {
    int number = 1;
    QString file = u"bild1.png"_s;
    while (QFile::exists(platform::JoinPath(folder_, file))) {
        file = u"bild%1.png"_s.arg(++number);
    }
    return file;
}

void SheetTray::Add(CollectedItem item) {
    if (!platform::CreateFolder(folder_)) {
        throw platform::Error(u"Der Ordner „%1“ kann nicht angelegt werden."_s.arg(folder_));
    }
    item.picture = KeptPicture(item);
    const QString file = NewFile();
    const QString path = platform::JoinPath(folder_, file);
    imaging::WriteImageFile(path, item.picture, {});
    auto items = items_;
    auto files = files_;
    items.push_back(std::move(item));
    files.push_back(file);
    try {
        Save(items, files);
    } catch (...) {
        QFile::remove(path);
        throw;
    }
    items_ = std::move(items);
    files_ = std::move(files);
}

void SheetTray::SetCount(size_t index, int count) {
    auto items = items_;
    items.at(index).count = std::clamp(count, 1, MostCopies);
    Save(items, files_);
    items_ = std::move(items);
}

void SheetTray::Move(size_t from, size_t to) {
    auto items = items_;
    auto files = files_;
    const auto move = [&](auto& list) {
        auto moved = std::move(list.at(from));
        list.erase(list.begin() + static_cast<ptrdiff_t>(from));
        list.insert(list.begin() + static_cast<ptrdiff_t>(std::min(to, list.size())),
                    std::move(moved));
    };
    move(items);
    move(files);
    Save(items, files);
    items_ = std::move(items);
    files_ = std::move(files);
}

void SheetTray::Remove(size_t index) {
    auto items = items_;
    auto files = files_;
    items.erase(items.begin() + static_cast<ptrdiff_t>(index));
    files.erase(files.begin() + static_cast<ptrdiff_t>(index));
    Save(items, files);
    QFile::remove(platform::JoinPath(folder_, files_.at(index)));
    items_ = std::move(items);
    files_ = std::move(files);
}

void SheetTray::Clear() {
    while (!items_.empty()) {
        Remove(items_.size() - 1);
    }
}

void SheetTray::TakeOut(const CollectedLayout& layout) {
    for (size_t i = std::min(items_.size(), layout.missing.size()); i-- > 0;) {
        if (layout.missing[i] == 0) {
            Remove(i);
        } else {
            SetCount(i, layout.missing[i]);
        }
    }
}

}  // namespace kadrona::core
