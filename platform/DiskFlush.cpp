#include "platform/DiskFlush.h"

#ifdef Q_OS_WIN
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#endif

namespace kadrona::platform {

#ifdef Q_OS_WIN

int FlushToDisk(int fileHandle) {
    return _commit(fileHandle) == 0 ? 0 : int(GetLastError());
}

void FlushFolder(const QString& /*folder*/) {}

#else

int FlushToDisk(int fileHandle) {
    if (fsync(fileHandle) == 0 || errno == EINVAL || errno == ENOTSUP) {
        return 0;
    }
    return errno;
}

void FlushFolder(const QString& folder) {
    const int handle =
        open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle >= 0) {
        fsync(handle);
        close(handle);
    }
}

#endif

}  // namespace kadrona::platform
