#include "platform/FolderListing.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <system_error>

#include "platform/Error.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

/// Qt's own listing ends at a failure as at the last entry.
std::error_code ForEachEntry(const QString& folder,
                             const std::function<void(const fs::directory_entry&)>& each) {
    std::error_code error;
    fs::directory_iterator entry(QFile::encodeName(folder).toStdString(), error);
    while (!error && entry != fs::directory_iterator()) {
        each(*entry);
        entry.increment(error);
    }
    return error;
}

QString ReasonOf(const QString& folder, const std::error_code& error) {
    return u"Der Ordner „%1“ konnte nicht gelesen werden: %2."_s.arg(folder,
                                                                     SystemReason(error.value()));
}

QString NameOf(const fs::path& path) {
    return QFile::decodeName(QByteArray::fromStdString(path.string()));
}

}  // namespace

QStringList FolderEntries(const QString& folder) {
    QStringList names;
    const std::error_code error = ForEachEntry(folder, [&](const fs::directory_entry& entry) {
        names.append(NameOf(entry.path().filename()));
    });
    if (error && error != std::errc::no_such_file_or_directory) {
        throw FileError(ReasonOf(folder, error));
    }
    names.sort();
    return names;
}

bool HaveMoreEntries(const QStringList& folders, int most) {
    int count = 0;
    for (const QString& folder : folders) {
        std::error_code error;
        fs::directory_iterator entry(QFile::encodeName(folder).toStdString(), error);
        while (!error && entry != fs::directory_iterator()) {
            if (++count > most) {
                return true;
            }
            entry.increment(error);
        }
    }
    return false;
}

std::vector<UnreadFolder> WalkFolder(const QString& folder,
                                     const std::function<void(const FoundFile& file)>& each) {
    struct Found {
        FoundFile file;
        bool isFolder = false;
    };
    const QString root = QDir::cleanPath(folder);
    std::vector<UnreadFolder> unread;
    std::vector<Found> left{{{root}, true}};
    while (!left.empty()) {
        const Found next = left.back();
        left.pop_back();
        if (!next.isFolder) {
            each(next.file);
            continue;
        }
        std::vector<Found> here;
        const QString& path = next.file.path;
        const std::error_code error = ForEachEntry(path, [&](const fs::directory_entry& entry) {
            std::error_code unknown;  // then it is a file that cannot be read
            const bool isLink = entry.is_symlink(unknown);
            const bool isFolder = entry.is_directory(unknown);
            if (!isLink || !isFolder) {
                const bool isRegular = !isLink && entry.is_regular_file(unknown);
                here.push_back({{NameOf(entry.path()), isRegular}, isFolder});
            }
        });
        const bool vanished = error == std::errc::no_such_file_or_directory && path != root;
        if (error && !vanished) {
            unread.push_back({path, ReasonOf(path, error)});
        }
        std::ranges::sort(here, std::greater(), [](const Found& found) { return found.file.path; });
        left.insert(left.end(), here.begin(), here.end());
    }
    return unread;
}

}  // namespace kadrona::platform
