#include "store/sqlite/WorkLimit.h"

#include <sqlite3.h>

#include <ctime>

namespace kadrona::store {

namespace {

/// Between two questions. Instructions can be made to take some 20 ms each (functions of values of
/// 16 MiB); a plain one takes 30 ns, as much as the question.
constexpr int InstructionsBetween = 100;

WorkLimit::Duration ProcessorTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

}  // namespace

void WorkLimit::Attach(sqlite3* handle) {
    sqlite3_progress_handler(handle, InstructionsBetween, &WorkLimit::Ask, this);
}

int WorkLimit::Ask(void* self) {
    const auto& limit = *static_cast<WorkLimit*>(self);
    if (limit.cancellable_ != nullptr) {
        return limit.cancellable_->IsGivenUp() ? 1 : 0;
    }
    return limit.step_ != nullptr && limit.step_->IsOver() ? 1 : 0;
}

WorkLimit::Step::Step(WorkLimit& limit, Work& work)
    : limit_(limit), work_(work), outer_(limit.step_) {
    limit_.step_ = this;
    if (work_.clock > limit_.most_) {
        processor_ = ProcessorTime();
    }
}

WorkLimit::Step::~Step() {
    limit_.step_ = outer_;
    work_.clock += std::chrono::steady_clock::now() - begin_;
    if (processor_) {
        work_.processor += ProcessorTime() - *processor_;
    }
}

/// The clock is looked at first: asking it needs no call of the system.
bool WorkLimit::Step::IsOver() {
    if (work_.clock + (std::chrono::steady_clock::now() - begin_) <= limit_.most_) {
        return false;
    }
    const Duration now = ProcessorTime();
    if (!processor_) {
        processor_ = now;
    }
    return work_.processor + (now - *processor_) > limit_.most_;
}

WorkLimit::Cancellable::Cancellable(WorkLimit& limit, QString text,
                                    const platform::Progress& progress)
    : limit_(limit), text_(std::move(text)), progress_(progress) {
    limit_.cancellable_ = this;
}

WorkLimit::Cancellable::~Cancellable() {
    limit_.cancellable_ = nullptr;
}

bool WorkLimit::Cancellable::IsGivenUp() {
    constexpr int QuestionsBetween = 200;
    if (++questions_ % QuestionsBetween != 0) {
        return false;
    }
    try {
        progress_(text_, 0, 0);
    } catch (...) {
        failure_ = std::current_exception();
    }
    return failure_ != nullptr;
}

void WorkLimit::Cancellable::ThrowIfGivenUp() const {
    if (failure_) {
        std::rethrow_exception(failure_);
    }
}

}  // namespace kadrona::store
