#pragma once

#include <chrono>
#include <exception>
#include <optional>

#include "platform/Progress.h"

struct sqlite3;

namespace kadrona::store {

/// Asks the engine of one connection every now and then whether its statement goes on. SQL in a
/// file (triggers, generated columns) can compute for ever, or yield rows for ever: who computes
/// too long is ended, and the engine says SQLITE_INTERRUPT. Who waits for a slow disk is not.
class WorkLimit {
 public:
    using Duration = std::chrono::nanoseconds;

    /// A statement may take `most` by the clock and then as much again of processor time, in all
    /// of its steps together; the caller's work between two steps does not count.
    explicit WorkLimit(Duration most) : most_(most) {}
    WorkLimit(const WorkLimit&) = delete;
    WorkLimit& operator=(const WorkLimit&) = delete;

    /// From now on, until the connection is closed, which must be before this ends.
    void Attach(sqlite3* handle);

    /// What one run of a statement has taken so far.
    struct Work {
        Duration clock{};
        Duration processor{};
    };

    /// For as long as a step of a statement takes; steps can lie in one another.
    class Step {
     public:
        Step(WorkLimit& limit, Work& work);
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

     private:
        friend class WorkLimit;

        bool IsOver();

        WorkLimit& limit_;
        Work& work_;
        Step* outer_;
        std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
        std::optional<Duration> processor_;
    };

    /// For as long as the user can end what takes its time: nothing else does.
    class Cancellable {
     public:
        Cancellable(WorkLimit& limit, QString text, const platform::Progress& progress);
        ~Cancellable();
        Cancellable(const Cancellable&) = delete;
        Cancellable& operator=(const Cancellable&) = delete;

        /// The engine is C: what `progress` throws waits until the statement has ended.
        void ThrowIfGivenUp() const;

     private:
        friend class WorkLimit;

        bool IsGivenUp();

        WorkLimit& limit_;
        QString text_;
        const platform::Progress& progress_;
        int questions_ = 0;
        std::exception_ptr failure_;
    };

 private:
    static int Ask(void* self);

    Duration most_;
    Step* step_ = nullptr;
    Cancellable* cancellable_ = nullptr;
};

}  // namespace kadrona::store
