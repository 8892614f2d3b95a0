#pragma once

#include <QtGlobal>
#include <algorithm>
#include <chrono>

namespace kadrona::imaging {

/// Whether a process that decodes works, and not for longer than any picture takes.
class WorkWatch {
 public:
    /// Processor time, and so long it may do nothing at all.
    static constexpr std::chrono::seconds Least{10};
    static constexpr std::chrono::seconds Patience{20};
    /// Of processor time; twice what a slow machine takes for the slowest format.
    static constexpr std::chrono::microseconds PerPixel{2};
    /// One that is stopped or waits for itself does less than this part of what a processor can.
    static constexpr int LeastShare = 20;
    /// All its waiting is at most so many times the work that it is allowed, on a machine that does
    /// as much else.
    static constexpr int MostWaiting = 4;
    /// Between two looks no more counts as passed: whoever looks may have been stopped as well.
    static constexpr std::chrono::milliseconds LongestLook{200};

    void Expect(qint64 pixels) { allowed_ = Least + PerPixel * pixels; }

    /// `used` is the processor time that it has had, `passed` the time since the last look.
    bool IsAllowed(std::chrono::nanoseconds used, std::chrono::nanoseconds passed) {
        waited_ += std::min<std::chrono::nanoseconds>(passed, LongestLook);
        return used <= allowed_ &&
               waited_ <= Patience + std::min(LeastShare * used, MostWaiting * allowed_);
    }

 private:
    std::chrono::nanoseconds allowed_ = Least;
    std::chrono::nanoseconds waited_{};
};

}  // namespace kadrona::imaging
