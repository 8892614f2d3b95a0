#pragma once

#include <QElapsedTimer>
#include <QString>
#include <memory>

#include "platform/Progress.h"

class QProgressDialog;
class QWidget;

namespace kadrona::controls {

/// Of the bar below; the numbers of an operation may be larger than a bar takes.
constexpr int ProgressParts = 1000;

/// A dialog with a bar from 0 to ProgressParts and the button "Cancel" that gives up, of that
/// object name; it takes all input while it is shown, and stays until it is deleted. The caller
/// says whether and when it shows itself.
std::unique_ptr<QProgressDialog> MakeProgressDialog(const QString& name, const QString& title,
                                                    QWidget* parent);

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
    QElapsedTimer since_;
};

}  // namespace kadrona::controls
