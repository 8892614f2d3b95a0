#include "store/postgres/CancelRequest.h"

#include <libpq-fe.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <memory>

namespace kadrona::store {

/// The library waits for the server's word without a limit, so a process of its own asks; it does
/// nothing that a signal handler may not.
bool RequestCancel(pg_conn& connection, std::chrono::milliseconds patience) {
    const std::unique_ptr<PGcancel, void (*)(PGcancel*)> request(PQgetCancel(&connection),
                                                                 PQfreeCancel);
    std::array<char, 256> reason{};
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(patience).count();
    const pid_t asking = fork();
    if (asking == 0) {
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        std::signal(SIGALRM, SIG_DFL);
        alarm(static_cast<unsigned>(seconds));
        const int done = PQcancel(request.get(), reason.data(), static_cast<int>(reason.size()));
        _exit(done == 1 ? 0 : 1);
    }
    int status = 0;
    pid_t ended = -1;
    while (asking > 0 && (ended = waitpid(asking, &status, 0)) < 0 && errno == EINTR) {
    }
    return ended > 0 && status == 0;
}

}  // namespace kadrona::store
