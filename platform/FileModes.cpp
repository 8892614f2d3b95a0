#include "platform/FileModes.h"

#include <sys/stat.h>

#include <QFile>

namespace kadrona::platform {
namespace {

bool IsShared(const QString& folder) {
    struct stat status {};
    return stat(QFile::encodeName(folder).constData(), &status) == 0 &&
           (status.st_mode & S_ISGID) != 0;
}

}  // namespace

mode_t ModeOfNewFile(const QString& folder) {
    return IsShared(folder) ? S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP : S_IRUSR | S_IWUSR;
}

mode_t ModeOfNewFolder(const QString& folder) {
    return IsShared(folder) ? S_ISGID | S_IRWXU | S_IRWXG : S_IRWXU;
}

}  // namespace kadrona::platform
