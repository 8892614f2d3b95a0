#include "platform/Surroundings.h"

#include <fcntl.h>
#include <unistd.h>

#include <QByteArray>
#include <csignal>

namespace kadrona::platform {

void MakeUpForSurroundings() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) < 0) {
            (void)open("/dev/null", O_RDWR);  // takes the lowest number that is free, which is this
        }
    }
    std::signal(SIGCHLD, SIG_DFL);  // else nobody hears how a process has ended
    for (const char* folder : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        if (!qgetenv(folder).startsWith('/')) {
            qunsetenv(folder);
        }
    }
}

}  // namespace kadrona::platform
