#include "core/profiles/ProfileIndex.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "platform/Error.h"
#include "platform/IniFile.h"
#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

ProfileIndex::ProfileIndex(QString dataFolder, QStringView fileName, QString key, QString prefix)
    : dataFolder_(std::move(dataFolder)),
      path_(platform::JoinPath(dataFolder_, fileName)),
      key_(std::move(key)),
      prefix_(std::move(prefix)) {}

QStringList ProfileIndex::Names() const {
    QStringList names;
    for (const QString& section : platform::IniFile(path_).Sections()) {
        names.append(section.trimmed());
    }
    return names;
}

QString ProfileIndex::NamedFile(const QString& name) const {
    const QString file = platform::IniFile(path_).ReadString(name.trimmed(), key_);
    // An index edited by hand must not lead deleting or storing to another file, also not to one of
    // the same folder: a bare name as platform::CreateUniqueFile makes it, whatever stands between.
    if (file != QFileInfo(file).fileName() ||
        !file.startsWith(prefix_.left(3), Qt::CaseInsensitive) ||
        !file.endsWith(u".tmp"_s, Qt::CaseInsensitive)) {
        return {};
    }
    const QString path = platform::JoinPath(dataFolder_, file);
    return platform::IsFile(path) || QFileInfo::exists(path) ? path : QString();
}

QString ProfileIndex::SettingsFile(const QString& name) const {
    QString path = NamedFile(name);
    if (!path.isEmpty() && !platform::IsFile(path)) {
        throw platform::FileError(
            u"Das Profil „%1“ kann nicht gelesen werden: Seine Datei „%2“ ist %3."_s.arg(
                name.trimmed(), path,
                QFileInfo(path).isDir() ? u"ein Ordner"_s : u"keine gewöhnliche Datei"_s));
    }
    return path;
}

void ProfileIndex::Record(const QString& name, const QString& fileName) const {
    Check(name);
    platform::IniFile::Change(path_, [&](platform::IniFile& index) {
        index.WriteString(name.trimmed(), key_, fileName);
    });
}

QString ProfileIndex::Remove(const QString& name) const {
    QString path;
    try {
        platform::IniFile::Change(path_, [&](platform::IniFile& index) {
            path = NamedFile(name);
            index.EraseSection(name.trimmed());
        });
    } catch (const platform::UnflushedError&) {
        QFile::remove(path);  // no profile names it any more
        throw;
    }
    return path.isEmpty() || QFile::remove(path) ? QString() : path;
}

void ProfileIndex::Check(const QString& name) {
    const bool controls = std::any_of(name.begin(), name.end(), [](QChar letter) {
        return letter.category() == QChar::Other_Control;
    });
    if (name.contains(u']') || controls) {
        throw platform::Error(
            u"Der Name „%1“ kann nicht verwendet werden: Er enthält „]“ oder ein Steuerzeichen."_s
                .arg(name));
    }
}

}  // namespace kadrona::core
