#pragma once

#include <QObject>
#include <QString>

namespace kadrona::printing {

/// How a print job fares.
struct JobState {
    enum class Stage {
        Waiting,
        Printing,
        /// Held back, or its printer has stopped; goes on when somebody helps.
        Held,
        Printed,
        /// Cancelled or given up.
        Failed,
        /// Nobody knows any more.
        Lost,
    };

    Stage stage = Stage::Waiting;
    /// In German, with the print service's reason: "angehalten: Kein Papier".
    QString text;

    bool IsOver() const { return stage >= Stage::Printed; }
    bool operator==(const JobState&) const = default;
};

/// Follows one job without waiting for it, until it is over; the object's end ends that, too.
class JobWatch : public QObject {
    Q_OBJECT

 public:
    JobWatch() = default;

 Q_SIGNALS:
    /// The state is another than before; the last one is over.
    void Changed(const kadrona::printing::JobState& state);
};

}  // namespace kadrona::printing
