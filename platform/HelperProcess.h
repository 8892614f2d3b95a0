#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <initializer_list>

#include "platform/SharedMemory.h"

namespace kadrona::platform {

/// A program of ours that runs in a process of its own because it is not to be trusted with what it
/// works on: messages go to and fro, and it sees the memory that it is given. It ends with the
/// object, whatever it does, and with this process.
class HelperProcess {
 public:
    enum class Heard {
        /// It has sent a message.
        Message,
        /// Not a word within the time.
        Nothing,
        /// It will send nothing more: it has ended, died or closed its ear.
        End,
    };

    /// Longer messages are heard as empty ones.
    static constexpr qsizetype LongestMessage = 8192;
    /// In the process: what it talks through, and the first memory, behind which the others stand.
    static constexpr int Channel = 3;
    static constexpr int FirstMemory = Channel + 1;

    /// Starts the program of that path with no arguments. Throws platform::Error, whose text is the
    /// system's reason alone.
    HelperProcess(const QString& program, std::initializer_list<const SharedMemory*> memory);
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    /// False where it no longer listens. Never waits: a message more than fit is lost.
    bool Send(const QByteArray& message) const;
    /// Waits for its next message, at most that long.
    Heard Hear(QByteArray& message, std::chrono::milliseconds most);

    /// Processor time that it has had, all its threads together.
    std::chrono::nanoseconds TimeUsed() const;

    /// Ends it, at once or where it has not ended by itself after `grace`. The signal that it has
    /// died of; 0 where it had ended without one, or had to be ended.
    int End(std::chrono::milliseconds grace = {});

 private:
    qint64 process_ = -1;
    int channel_ = -1;
};

/// The other end, in the process itself: its next message, without a bound on the time. Empty where
/// the program that started it is gone, even if it has left a message.
QByteArray HearStarter();
void TellStarter(const QByteArray& message);

}  // namespace kadrona::platform
