#include "platform/TerminationSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <csignal>
#include <utility>

#include "platform/Progress.h"

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

volatile std::sig_atomic_t noted = 0;

void Note(int signal) {
    noted = signal;
}

using Handler = void (*)(int);

/// Calls it once for each; what is ignored stays so.
void Handle(Handler handler) {
    for (const int number : Ending) {
        struct sigaction before {};
        sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            struct sigaction action {};
            action.sa_handler = handler;
            action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
            sigaction(number, &action, nullptr);
        }
    }
}

void Forget(Handler handler) {
    for (const int number : Ending) {
        struct sigaction now {};
        sigaction(number, nullptr, &now);
        if (now.sa_handler == handler) {
            std::signal(number, SIG_DFL);
        }
    }
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
    Handle(WakeUp);
}

TerminationSignals::~TerminationSignals() {
    Forget(WakeUp);
    for (int& end : wakeUp) {
        if (end >= 0) {
            close(std::exchange(end, -1));
        }
    }
}

TerminationNote::TerminationNote() {
    noted = 0;
    Handle(Note);
}

TerminationNote::~TerminationNote() {
    Forget(Note);
    if (noted != 0) {
        std::raise(noted);
    }
}

void ThrowIfEnding() {
    if (noted != 0) {
        throw Cancelled();
    }
}

void IgnoreFileSizeSignal() {
    std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace kadrona::platform
