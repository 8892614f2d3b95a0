#pragma once

#include <memory>

#include "imaging/reading/ReadProgress.h"

class QLabel;
class QProgressDialog;
class QWidget;

namespace kadrona::app {

/// Shows the preview of a camera's raw file in the place of the photo while the photo itself is
/// developed, and, also for others that take long, a line with a button that gives up. Nothing else
/// takes the user's input meanwhile. Object names: "DevelopingPreview", "DevelopingProgress".
class DevelopingDisplay : public imaging::ReadProgress {
 public:
    /// `place`, which outlives the display, is covered by the preview.
    explicit DevelopingDisplay(QWidget& place);
    ~DevelopingDisplay() override;

    void Begin(const imaging::Pixels& preview) override;
    bool GoOn(double part) override;

 private:
    void ShowPreview(const imaging::Pixels& preview);
    void ShowLine();

    QWidget& place_;
    std::unique_ptr<QLabel> preview_;
    std::unique_ptr<QProgressDialog> line_;
};

}  // namespace kadrona::app
