#pragma once

#include <QString>
#include <QStringList>

namespace kadrona::core {

/// The index of a kind of profiles: an INI file in the data folder with a section per profile,
/// whose one key holds the bare name of the profile's settings file in the same folder. Every
/// operation opens the file anew; the order of the sections is the order of the profiles, and their
/// names are found whatever their case and the blanks around them. All throw platform::FileError
/// where the file cannot be read or written.
class ProfileIndex {
 public:
    /// `prefix` begins the names of the settings files, as platform::CreateUniqueFile takes it.
    ProfileIndex(QString dataFolder, QStringView fileName, QString key, QString prefix);

    QStringList Names() const;

    /// Full path of a profile's settings file; empty when the profile or its file is missing, or
    /// when the index names a file that no profile of this kind can have. Throws
    /// platform::FileError where something else than a file stands there.
    QString SettingsFile(const QString& name) const;

    /// The same for who removes it: whatever stands there.
    QString NamedFile(const QString& name) const;

    /// Adds a profile at the end, or gives a known one another file. Throws platform::Error for a
    /// name that no INI section can bear.
    void Record(const QString& name, const QString& fileName) const;

    /// Takes a profile out of the index, then removes its settings file: where the index cannot be
    /// written the profile stays whole. Returns the path of a file that could not be removed, else
    /// an empty one.
    QString Remove(const QString& name) const;

    /// Throws platform::Error, which names the reason, for a name that no profile can bear:
    /// one with a closing bracket or a control character.
    static void Check(const QString& name);

 private:
    QString dataFolder_;
    QString path_;
    QString key_;
    QString prefix_;
};

}  // namespace kadrona::core
