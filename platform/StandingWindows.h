#pragma once

#include <QPoint>
#include <QString>
#include <vector>

namespace kadrona::platform {

/// Where the windows of a user's running programs stand, so that a second one is not put exactly
/// over the first. Each program tells of its window by a file of its own in the user's runtime
/// folder; without such a folder nothing is known.
class StandingWindows {
 public:
    StandingWindows();
    ~StandingWindows();
    StandingWindows(const StandingWindows&) = delete;
    StandingWindows& operator=(const StandingWindows&) = delete;

    /// The frame's corners of the other programs' windows.
    std::vector<QPoint> Others() const;

    /// This program's window stands there now. What cannot be written is not told.
    void Tell(const QPoint& place);

 private:
    QString own_;
};

}  // namespace kadrona::platform
