#include "platform/Paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#ifdef Q_OS_WIN
#include <QSettings>
#endif

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

#ifdef Q_OS_WIN

QString SystemCommonAppDataFolder() {
    const QSettings shellFolders(
        u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\explorer\\Shell Folders"_s,
        QSettings::NativeFormat);
    return shellFolders.value(u"Common AppData"_s).toString();
}

#else

QString SystemCommonAppDataFolder() {
    const QFileInfo shared(u"/var/lib/Kadrona"_s);
    if (shared.isDir() && shared.isWritable()) {
        return shared.path();
    }
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

#endif

}  // namespace

QString JoinPath(QStringView folder, QStringView name) {
    QString path;
    path.reserve(folder.size() + 1 + name.size());
    path += folder;
    if (!folder.endsWith(QDir::separator())) {
        path += QDir::separator();
    }
    path += name;
    return path;
}

QString WithoutTrailingSeparator(QString path) {
    if (path.endsWith(QDir::separator())) {
        path.chop(1);
    }
    return path;
}

QString ProgramFolder() {
    const QFileInfo program(QCoreApplication::applicationFilePath());
    return WithoutTrailingSeparator(QDir::toNativeSeparators(program.canonicalPath()));
}

QString CommonAppDataFolder() {
    const QString chosen = qEnvironmentVariable("KADRONA_COMMON_APPDATA");
    return WithoutTrailingSeparator(
        QDir::toNativeSeparators(chosen.isEmpty() ? SystemCommonAppDataFolder() : chosen));
}

bool CreateFolder(const QString& path) {
    return !path.isEmpty() && QDir().mkpath(path) && QFileInfo(path).isDir();
}

}  // namespace kadrona::platform
