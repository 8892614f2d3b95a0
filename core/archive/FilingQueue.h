#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>

#include "core/archive/FiledFiles.h"

namespace kadrona::platform {
class PropertyFile;
}

namespace kadrona::core {

/// A photo that is to be filed as soon as the archive's server is there again.
struct WaitingPhoto {
    QString archiveFolder;
    QString templateName;
    QString tags;  ///< see TagText
    QDateTime created;
    QByteArray photo;      ///< a JPEG with its tags
    QByteArray thumbnail;  ///< a JPEG
    /// Kept beside it where it is given; a copy of its file waits too.
    std::optional<OriginalToKeep> original = {};
};

/// Photos that wait, in a folder that only the user can open; they stay there when the program
/// ends.
class FilingQueue {
 public:
    /// The folder need not exist.
    explicit FilingQueue(QString folder = UsersFolder()) : folder_(std::move(folder)) {}

    const QString& Folder() const { return folder_; }

    /// Throws platform::FileError; nothing of the photo is left then.
    void Add(const WaitingPhoto& photo) const;
    /// The names of all that wait, the oldest first. Throws platform::FileError where the folder
    /// cannot be read: none of them must pass for one that does not wait.
    QStringList Waiting() const;
    /// Throw platform::FileError. The knowledge is all but photo and thumbnail.
    WaitingPhoto Read(const QString& name) const;
    WaitingPhoto ReadKnowledge(const QString& name) const;
    /// The file of the photo, a JPEG.
    QString PhotoFile(const QString& name) const;
    /// False where something of it could not be removed and stays: with the knowledge of it the
    /// photo still waits, without it RemoveOrphans takes it.
    bool Remove(const QString& name) const;
    /// Files of photos that do not wait, left by a run that was ended, if older than `before`: what
    /// is younger may be about to wait. What cannot be removed stays. Throws as Waiting.
    void RemoveOrphans(const QDateTime& before) const;

    /// Below $XDG_DATA_HOME.
    static QString UsersFolder();

 private:
    std::optional<OriginalToKeep> OriginalOf(const platform::PropertyFile& file) const;
    QString PathOf(const QString& name, QStringView extension) const;

    QString folder_;
};

}  // namespace kadrona::core
