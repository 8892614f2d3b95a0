#include "platform/FolderWatch.h"

#include <QDir>
#include <QFileInfo>
#include <utility>

namespace kadrona::platform {

FolderWatch::FolderWatch(QString folder, QStringList patterns)
    : folder_(std::move(folder)), patterns_(std::move(patterns)) {}

bool FolderWatch::Look() {
    const QDir folder(folder_);
    const bool exists = !folder_.isEmpty() && folder.exists();
    QHash<QString, State> now;
    QStringList files;
    const QFileInfoList found =
        exists ? folder.entryInfoList(patterns_, QDir::Files | QDir::NoSymLinks, QDir::Time)
               : QFileInfoList();
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
    if (exists && !std::exchange(looked_, true)) {
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
