#include "platform/TerminationSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <csignal>
#include <utility>

namespace kadrona::platform {

namespace {

constexpr std::array Ending{SIGTERM, SIGHUP, SIGINT};

/// The ends of a pipe: a signal handler may do little more than write a byte. -1 while there is no
/// TerminationSignals.
std::array<int, 2> wakeUp{-1, -1};

void WakeUp(int /*signal*/) {
    const char byte = 0;
    // Nothing can be done about a pipe that takes no byte, and one that is full has told already.
    [[maybe_unused]] const ssize_t written = write(wakeUp[1], &byte, 1);
}

}  // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {
    if (pipe2(wakeUp.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    auto* notifier = new QSocketNotifier(wakeUp[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        Q_EMIT Requested();
    });
    for (const int number : Ending) {
        struct sigaction before {};
        sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            struct sigaction action {};
            action.sa_handler = WakeUp;
            action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
            sigaction(number, &action, nullptr);
        }
    }
}

TerminationSignals::~TerminationSignals() {
    for (const int number : Ending) {
        struct sigaction now {};
        sigaction(number, nullptr, &now);
        if (now.sa_handler == WakeUp) {
            std::signal(number, SIG_DFL);
        }
    }
    for (int& end : wakeUp) {
        if (end >= 0) {
            close(std::exchange(end, -1));
        }
    }
}

void IgnoreFileSizeSignal() {
    std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace kadrona::platform
