#include "platform/FolderWatch.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

#include "platform/FolderListing.h"
#include "platform/FolderProbe.h"

using namespace Qt::StringLiterals;

namespace kadrona::platform {

FolderWatch::FolderWatch(QString folder, QStringList patterns)
    : folder_(std::move(folder)), patterns_(std::move(patterns)) {}

namespace {

/// The folder itself and, on a card, those into which cameras put their photos: DCIM/100ABCDE and
/// what follows it (Design rule for Camera File system, JEITA CP-3461).
QStringList PhotoFolders(const QString& folder) {
    const auto inside = [](const QString& outer) {
        QStringList folders;
        const QFileInfoList found =
            QDir(outer).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
        for (const QFileInfo& info : found) {
            folders.append(info.filePath());
        }
        return folders;
    };
    const QString Photos = u"DCIM"_s;
    QStringList folders{folder};
    if (QDir(folder).dirName().compare(Photos, Qt::CaseInsensitive) == 0) {
        return folders + inside(folder);
    }
    for (const QString& path : inside(folder)) {
        if (QFileInfo(path).fileName().compare(Photos, Qt::CaseInsensitive) == 0) {
            folders += path;
            folders += inside(path);
        }
    }
    return folders;
}

/// Newest first.
QFileInfoList FilesIn(const QStringList& folders, const QStringList& patterns) {
    QFileInfoList files;
    for (const QString& folder : folders) {
        files += QDir(folder).entryInfoList(patterns, QDir::Files | QDir::NoSymLinks, QDir::Time);
    }
    if (folders.size() > 1) {
        std::ranges::stable_sort(files, std::ranges::greater(),
                                 [](const QFileInfo& file) { return file.lastModified(); });
    }
    return files;
}

}  // namespace

bool FolderWatch::Look() {
    constexpr std::chrono::milliseconds Patience(200);  // it is looked at again and again
    const bool isThere =
        !folder_.isEmpty() && LookAtFolder(folder_, Patience) == FolderState::There;
    crowded_ = isThere && HaveMoreEntries({folder_}, MostEntries);
    const bool exists = isThere && !crowded_;
    const QStringList folders = exists ? PhotoFolders(folder_) : QStringList();
    crowded_ |= HaveMoreEntries(folders, MostEntries);
    QHash<QString, State> now;
    QStringList files;
    const QFileInfoList found = crowded_ ? QFileInfoList() : FilesIn(folders, patterns_);
    for (const QFileInfo& info : found) {
        const QString path = info.filePath();
        const State state{info.size(), info.lastModified()};
        now.insert(path, state);
        if (state.size == 0 || seen_.value(path) != state || refused_.value(path) == state) {
            continue;
        }
        files.append(path);
        if (known_.value(path) != state) {
            arrived_.append(path);
            known_.insert(path, state);
        }
    }
    if (isThere && !crowded_ && !std::exchange(looked_, true)) {
        known_ = now;
    }
    seen_ = std::move(now);
    return std::exchange(files_, files) != files;
}

QStringList FolderWatch::TakeArrived() {
    return std::exchange(arrived_, {});
}

void FolderWatch::PassOver(const QString& path) {
    refused_.insert(path, seen_.value(path));
    files_.removeAll(path);
    arrived_.removeAll(path);
}

}  // namespace kadrona::platform
