#pragma once

#include <QTimer>
#include <memory>
#include <vector>

#include "printing/JobWatch.h"
#include "printing/cups/service/Connection.h"
#include "printing/cups/service/Queue.h"

namespace kadrona::printing::cups {

class Question;

/// Asks the print service how a job fares, at first each second, later less often. A service that
/// does not answer several times in a row ends it.
class JobFollower : public JobWatch {
    Q_OBJECT

 public:
    /// What the service tells of the job itself.
    struct Job {
        ipp_jstate_t state = IPP_JSTATE_PENDING;
        /// Keywords.
        std::vector<QByteArray> reasons;
    };

    /// `address` without a display: the user is not kept waiting.
    JobFollower(ServiceAddress address, Queue queue, int job);
    ~JobFollower() override;

 private:
    void Ask(const IppMessage& request, void (JobFollower::*read)(const IppMessage&));
    void AskForJob();
    void ReadJob(const IppMessage& answer);
    void ReadQueue(const IppMessage& answer);
    void Tell(const JobState& state);

    Connection connection_;
    Queue queue_;
    int number_;
    /// As the service told last.
    Job job_;
    QTimer timer_;
    std::unique_ptr<Question> question_;
    JobState state_;
    int failures_ = 0;
};

}  // namespace kadrona::printing::cups
