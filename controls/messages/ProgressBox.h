#pragma once

#include <QString>
#include <memory>

#include "platform/Progress.h"

class QProgressDialog;
class QWidget;

namespace kadrona::controls {

/// A box that shows how far a long operation has come, with a button that gives it up; it appears
/// once the operation has taken a moment. Meanwhile the window is painted but takes no input.
/// Object names: "ProgressBox", with the button "Cancel".
class ProgressBox {
 public:
    ProgressBox(QWidget* parent, const QString& title);
    ~ProgressBox();
    ProgressBox(const ProgressBox&) = delete;
    ProgressBox& operator=(const ProgressBox&) = delete;

    /// What the operation tells; valid as long as the box. Throws platform::Cancelled.
    platform::Progress Reporter();

 private:
    void Show(const QString& what, qint64 done, qint64 total);

    std::unique_ptr<QProgressDialog> dialog_;
};

}  // namespace kadrona::controls
