#include "platform/Renaming.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>

#include "platform/Error.h"
#include "platform/SystemReason.h"

namespace kadrona::platform {

using namespace Qt::StringLiterals;

int FlushFolder(const QString& folder) {
    const int handle =
        open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) {
        return errno == EACCES ? 0 : errno;
    }
    const bool isDone = fsync(handle) == 0 || errno == EINVAL || errno == ENOTSUP;
    const int code = isDone ? 0 : errno;
    close(handle);
    return code;
}

void RenameOnDisk(const QString& from, const QString& to) {
    const auto text = [&](int code) {
        return u"„%1“ konnte nicht in „%2“ umbenannt werden: %3."_s.arg(from, to,
                                                                        SystemReason(code));
    };
    if (rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0) {
        throw FileError(text(errno));
    }
    if (const int code = FlushFolder(QFileInfo(to).path()); code != 0) {
        throw UnflushedError(text(code));
    }
}

}  // namespace kadrona::platform
