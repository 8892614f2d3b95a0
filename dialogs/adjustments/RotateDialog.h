#pragma once

#include <QDialog>
#include <optional>

#include "imaging/pixels/Pixels.h"

class QDoubleSpinBox;

namespace kadrona::dialogs {

class RotationPreview;

/// "Bild drehen": lets the user level a small copy of the photo over a guide line.
class TfmRotateDlg : public QDialog {
    Q_OBJECT

 public:
    explicit TfmRotateDlg(QWidget* parent = nullptr);

    /// Starts upright. Degrees counter-clockwise, exactly as the preview was turned; nothing when
    /// cancelled.
    std::optional<double> ShowEx(const imaging::Pixels& preview);

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    void FitPreview();
    void BuildAngle();
    QLayout* AngleAndButtons();

    RotationPreview* preview_;
    QDoubleSpinBox* angle_;
};

}  // namespace kadrona::dialogs
