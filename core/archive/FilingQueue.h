#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace kadrona::core {

/// A photo that is to be filed as soon as the archive's server is there again.
struct WaitingPhoto {
    QString archiveFolder;
    QString templateName;
    QString tags;  ///< see TagText
    QDateTime created;
    QByteArray photo;      ///< a JPEG with its tags
    QByteArray thumbnail;  ///< a JPEG
};

/// Photos that wait, in a folder that only the user can open; they stay there when the program
/// ends.
class FilingQueue {
 public:
    /// The folder need not exist.
    explicit FilingQueue(QString folder = UsersFolder()) : folder_(std::move(folder)) {}

    const QString& Folder() const { return folder_; }

    /// Throws platform::FileError.
    void Add(const WaitingPhoto& photo) const;
    /// The names of all that wait, the oldest first.
    QStringList Waiting() const;
    /// Throws platform::FileError.
    WaitingPhoto Read(const QString& name) const;
    /// What cannot be removed stays, and waits.
    void Remove(const QString& name) const;

    /// Below $XDG_DATA_HOME.
    static QString UsersFolder();

 private:
    QString PathOf(const QString& name, QStringView extension) const;

    QString folder_;
};

}  // namespace kadrona::core
