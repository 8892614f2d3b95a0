#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTimer>
#include <chrono>

namespace kadrona::printing::cups {

/// One question to the print service, asked by a process of its own, so that neither a service that
/// stays silent nor one that talks without end holds up the program. Emits `Finished` once.
class Question : public QObject {
    Q_OBJECT

 public:
    enum class Outcome {
        Answered,
        Missing,
        NoService,
        /// The service answered in HTTP only: Status().
        Refused,
        /// No whole answer in time.
        Silent,
        TooLarge,
        Unreadable,
        Cancelled,
        /// The asking program is not beside this one or cannot be started.
        NotAsked,
    };

    struct Limits {
        std::chrono::milliseconds time;
        qint64 bytes;
    };

    /// `arguments` as in ask/main.cpp, without the seconds; `input` is written to the process.
    Question(QStringList arguments, const QByteArray& input, Limits limits);
    ~Question() override;

    bool IsFinished() const { return finished_; }
    Outcome Result() const { return outcome_; }
    /// What came, where it was answered.
    const QByteArray& Answer() const { return answer_; }
    /// libcups' status of a refusal.
    int Status() const { return answer_.toInt(); }

    void Cancel() { End(Outcome::Cancelled); }

 Q_SIGNALS:
    void Finished();

 private:
    void Collect();
    void ProcessEnded(int code, QProcess::ExitStatus status);
    void End(Outcome outcome);

    Limits limits_;
    QProcess process_;
    QTimer deadline_;
    QByteArray answer_;
    Outcome outcome_ = Outcome::Silent;
    bool finished_ = false;
};

}  // namespace kadrona::printing::cups
