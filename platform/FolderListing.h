#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace kadrona::platform {

/// The names of all that stands in a folder, hidden ones too, in order. None where there is no such
/// folder; throws FileError where it cannot be read: what may be there must not be taken for
/// missing.
QStringList FolderEntries(const QString& folder);

/// Whether more than so many entries stand in the folders together; counts no further. One that
/// cannot be read has none.
bool HaveMoreEntries(const QStringList& folders, int most);

struct FoundFile {
    QString path;
    bool isRegular = false;  ///< no link, pipe or device
};

struct UnreadFolder {
    QString path;
    QString text;  ///< a sentence for the user, with the reason
};

/// Calls `each`, in order, for all but folders, and links to folders, that stand in a folder or
/// below it; what it throws ends the walk. Links are not followed. Returns the folders that could
/// not be read; nothing of those, or a part only, was found. One that vanished meanwhile is none.
std::vector<UnreadFolder> WalkFolder(const QString& folder,
                                     const std::function<void(const FoundFile& file)>& each);

}  // namespace kadrona::platform
