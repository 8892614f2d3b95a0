#pragma once

#include <QDeadlineTimer>
#include <QString>
#include <chrono>
#include <optional>

namespace kadrona::store {

/// Watches one answer of a server come in, so that it neither keeps the program waiting with little
/// nor fills the memory, nor with much that is no answer. A server that needs its time sends whole
/// packets; one that sends a byte now and then is silent.
class AnswerWatch {
 public:
    /// From now on; the connection's socket stays open as long as this lives. Who is seen can be
    /// ended by the user, and may take long.
    AnswerWatch(int socket, std::chrono::milliseconds patience, bool isSeen);

    /// Until when the server may be silent.
    QDeadlineTimer Deadline() const { return silence_; }

    /// Something has been sent to it.
    void NoteProgress() { silence_.setRemainingTime(patience_); }
    /// Something has come and is not taken in yet.
    void NoteArrival();

    /// Why no more of the answer must be taken in: in German, without a full stop. Else empty.
    QString Excess();

 private:
    int socket_;
    std::chrono::milliseconds patience_;
    bool isSeen_;
    qint64 reads_ = 0;
    QDeadlineTimer silence_;
    QDeadlineTimer end_;
    QDeadlineTimer nextLook_;
    std::optional<qint64> memoryBefore_;
};

}  // namespace kadrona::store
