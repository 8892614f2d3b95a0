#pragma once

#include <QObject>

namespace kadrona::platform {

/// Turns the first SIGTERM, SIGHUP or SIGINT into a signal of the event loop, so that the program
/// can end as a user ends it; a second one ends it at once. One that was ignored stays ignored.
/// There may be one object at a time.
class TerminationSignals : public QObject {
    Q_OBJECT

 public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

 Q_SIGNALS:
    void Requested();
};

/// The same for a program without an event loop: as long as this lives, the first of those signals
/// is only noted, so that work can be ended in an orderly way; a second one ends it at once.
class TerminationNote {
 public:
    TerminationNote();
    /// Ends the program by the signal that was noted, if any.
    ~TerminationNote();
    TerminationNote(const TerminationNote&) = delete;
    TerminationNote& operator=(const TerminationNote&) = delete;
};

/// Throws Cancelled where a signal was noted.
void ThrowIfEnding();

/// A file that grows beyond the user's limit is then an error of the write, not the program's end.
void IgnoreFileSizeSignal();

}  // namespace kadrona::platform
