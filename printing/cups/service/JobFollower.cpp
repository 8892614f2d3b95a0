#include "printing/cups/service/JobFollower.h"

#include <algorithm>
#include <array>
#include <optional>

#include "printing/cups/service/Question.h"
#include "printing/cups/service/StateReasons.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

using Stage = JobState::Stage;

constexpr std::chrono::milliseconds FirstPause{500};
constexpr std::chrono::milliseconds LongestPause{5000};
constexpr int MostFailures = 6;

constexpr std::array WantedJobAttributes{"job-state", "job-state-reasons"};

/// Nothing where the answer speaks of no job.
std::optional<JobFollower::Job> JobIn(ipp_t* answer) {
    ipp_attribute_t* state = ippFindAttribute(answer, "job-state", IPP_TAG_ENUM);
    if (state == nullptr) {
        return std::nullopt;
    }
    JobFollower::Job job{static_cast<ipp_jstate_t>(ippGetInteger(state, 0)), {}};
    ipp_attribute_t* reasons = ippFindAttribute(answer, "job-state-reasons", IPP_TAG_KEYWORD);
    for (int i = 0; i < ippGetCount(reasons); ++i) {
        job.reasons.emplace_back(ippGetString(reasons, i, nullptr));
    }
    return job;
}

JobState WithReason(Stage stage, const QString& text, const QString& reason) {
    return {stage, reason.isEmpty() ? text : text + u": "_s + reason};
}

/// Why the printer stands still or does not go on.
QString ReasonOf(const Queue& queue) {
    const QString reasons = PrinterReasons(queue.stateReasons);
    return reasons.isEmpty() ? queue.stateMessage : reasons;
}

/// Why a job ended badly: what the service says of the job, unless that is only that it did.
QString ReasonOfEnd(const JobFollower::Job& job, const Queue& queue) {
    std::vector<QByteArray> telling = job.reasons;
    std::erase(telling, "job-completed-with-errors");
    for (const QString& reason : {JobReasons(telling), ReasonOf(queue)}) {
        if (!reason.isEmpty()) {
            return reason;
        }
    }
    return JobReasons(job.reasons);
}

JobState StateOf(const JobFollower::Job& job, const Queue& queue) {
    const QString ofJob = JobReasons(job.reasons);
    switch (job.state) {
        case IPP_JSTATE_PENDING:
            return queue.isPaused ? WithReason(Stage::Held, u"angehalten"_s, ReasonOf(queue))
                                  : WithReason(Stage::Waiting, u"wartet"_s, ofJob);
        case IPP_JSTATE_HELD:
            return WithReason(Stage::Held, u"angehalten"_s, ofJob);
        case IPP_JSTATE_STOPPED:
            return WithReason(Stage::Held, u"angehalten"_s, ReasonOfEnd(job, queue));
        case IPP_JSTATE_PROCESSING:
            return WithReason(Stage::Printing, u"wird gedruckt"_s,
                              PrinterReasons(queue.stateReasons));
        case IPP_JSTATE_CANCELED:
            return WithReason(Stage::Failed, u"abgebrochen"_s, ofJob);
        case IPP_JSTATE_ABORTED:
            return WithReason(Stage::Failed, u"nicht gedruckt"_s, ReasonOfEnd(job, queue));
        case IPP_JSTATE_COMPLETED:
            break;
    }
    return WithReason(Stage::Printed, u"gedruckt"_s, ofJob);
}

}  // namespace

JobFollower::JobFollower(ServiceAddress address, Queue queue, int job)
    : connection_(std::move(address)), queue_(std::move(queue)), number_(job) {
    timer_.setSingleShot(true);
    timer_.setInterval(FirstPause);
    connect(&timer_, &QTimer::timeout, this, &JobFollower::AskForJob);
    timer_.start();
}

JobFollower::~JobFollower() = default;

void JobFollower::Ask(const IppMessage& request, void (JobFollower::*read)(const IppMessage&)) {
    question_ = connection_.Begin(request, "/");
    const auto finished = [this, read] {
        const std::unique_ptr<Question> question = std::move(question_);
        try {
            (this->*read)(connection_.AnswerOf(*question));
        } catch (const platform::Error& error) {
            ++failures_;
            Tell(failures_ < MostFailures
                     ? state_
                     : JobState{Stage::Lost, u"Stand unbekannt: "_s + error.Text()});
        }
    };
    // Later, for the question that calls goes then.
    if (question_->IsFinished()) {
        QMetaObject::invokeMethod(this, finished, Qt::QueuedConnection);
    } else {
        connect(question_.get(), &Question::Finished, this, finished, Qt::QueuedConnection);
    }
}

void JobFollower::AskForJob() {
    const IppMessage request = NewRequest(IPP_OP_GET_JOB_ATTRIBUTES, queue_.Uri());
    ippAddInteger(request.get(), IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", number_);
    ippAddStrings(request.get(), IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                  WantedJobAttributes.size(), nullptr, WantedJobAttributes.data());
    Ask(request, &JobFollower::ReadJob);
}

/// Why a job waits or failed is known by its queue alone.
void JobFollower::ReadJob(const IppMessage& answer) {
    const std::optional<Job> job = JobIn(answer.get());
    failures_ = 0;
    if (!job) {
        Tell({Stage::Lost, u"der Druckdienst kennt den Auftrag nicht mehr"_s});
    } else if (job->state == IPP_JSTATE_COMPLETED || job->state == IPP_JSTATE_CANCELED) {
        Tell(StateOf(*job, queue_));
    } else {
        job_ = *job;
        Ask(QueueRequest(queue_.name), &JobFollower::ReadQueue);
    }
}

void JobFollower::ReadQueue(const IppMessage& answer) {
    queue_ = QueueIn(answer).value_or(queue_);
    Tell(StateOf(job_, queue_));
}

void JobFollower::Tell(const JobState& state) {
    if (!state.IsOver()) {
        timer_.start(std::min(timer_.intervalAsDuration() * 5 / 4, LongestPause));
    }
    if (state != state_) {
        state_ = state;
        Q_EMIT Changed(state);  // the last word: whoever hears it may delete this object
    }
}

}  // namespace kadrona::printing::cups
