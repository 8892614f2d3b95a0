#pragma once

#include <QDialog>

#include "controls/messages/ModalResult.h"
#include "imaging/tone/ColourEffects.h"

class QTabWidget;
class QVBoxLayout;

namespace kadrona::dialogs {

class AdjustmentPage;
class BeforeAfterView;

/// "Farben anpassen": contrast and brightness, hue, saturation and lightness, RGB balance, and
/// histogram equalisation, shown live beside the photo. The dialog keeps its size from one opening
/// to the next.
class ColourAdjustment : public QDialog {
    Q_OBJECT

 public:
    explicit ColourAdjustment(QWidget* parent = nullptr);

    /// Starts with nothing adjusted. Ok or Cancel; applies nothing.
    controls::ModalResult ShowEx(const imaging::Pixels& photo);

    /// What was adjusted, as one filter for the photo that was shown; null for nothing. The
    /// equalisation comes first, for it knows the levels of the photo as it was.
    imaging::PixelFilterPointer Filter() const;

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    void AddPages();
    QLayout* Buttons();
    AdjustmentPage* AddPage(const QString& name, AdjustmentPage* page, const QString& title);
    void ResetAll();

    /// Lives while the dialog shows, so that it keeps no memory of a photo's size.
    BeforeAfterView* preview_ = nullptr;
    QVBoxLayout* column_;
    QTabWidget* pages_;
    AdjustmentPage* contrast_;
    AdjustmentPage* hue_;
    AdjustmentPage* balance_;
    AdjustmentPage* equalisation_;
    imaging::Histogram histogram_;
};

}  // namespace kadrona::dialogs
