#pragma once

#include <QString>
#include <optional>

#include "controls/messages/ProgressBox.h"
#include "platform/Progress.h"

class QWidget;

namespace kadrona::core {
class TData;
}

namespace kadrona::dialogs {

/// A progress box for work on the archive. While this lives, the box is also shown while the
/// archive's server is waited for, however long it takes as long as it goes on sending, and can be
/// given up: what waited then throws platform::Cancelled.
class ArchiveProgress {
 public:
    /// All outlive the object. `archive` is the window that reads the archive when it is painted,
    /// `over` the one that the box stands over; null is the screen.
    ArchiveProgress(core::TData& data, QWidget& archive, QWidget* over, QString title);
    ~ArchiveProgress();
    ArchiveProgress(const ArchiveProgress&) = delete;
    ArchiveProgress& operator=(const ArchiveProgress&) = delete;

    /// What the work tells; valid as long as this. Throws platform::Cancelled.
    platform::Progress Reporter();

 private:
    void Show();
    void ShowWaiting();

    core::TData& data_;
    QWidget& archive_;
    QWidget* over_;
    QString title_;
    /// Made when there is something to show.
    std::optional<controls::ProgressBox> box_;
    platform::Progress show_;
    /// What was told last.
    QString what_;
    qint64 done_ = 0;
    qint64 total_ = 0;
};

}  // namespace kadrona::dialogs
