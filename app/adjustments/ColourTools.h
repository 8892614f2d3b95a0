#pragma once

#include <QObject>

#include "imaging/view/ViewTool.h"

namespace kadrona::dialogs {
class ColourAdjustment;
class TfmRGBKurve;
}  // namespace kadrona::dialogs

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class MainActions;
class PhotoSession;
class ViewActions;

/// The tools that change the photo's colours: white point (a mode, held in its action's checked
/// state), gradation, black and white, and the colour dialog. None of them does anything while the
/// retouch stamp is on, nor where a photo could not be read.
class ColourTools : public QObject, private imaging::view::ViewTool {
    Q_OBJECT

 public:
    /// All that is given outlives the object.
    ColourTools(PhotoSession& session, imaging::view::ImageView& view, MainActions& actions,
                ViewActions& viewActions, dialogs::TfmRGBKurve& curveDialog);
    ~ColourTools() override;

 private:
    void acSetWhitePointExecute();
    void acGradationExecute();
    void acSchwarzweissExecute();
    void acColorConfigExecute();
    void LeaveMode();
    bool MayWork() const;
    bool TemplateIsHidden() const;
    void FollowWhitePointAction(bool checked);
    void Press(const imaging::view::ToolPointer& pointer) override;
    bool Key(const QKeyEvent& event) override;
    void SetWhitePoint(QPoint pixel);

    PhotoSession& session_;
    imaging::view::ImageView& view_;
    MainActions& actions_;
    ViewActions& viewActions_;
    dialogs::TfmRGBKurve& curveDialog_;
    dialogs::ColourAdjustment* colourDialog_ = nullptr;
};

}  // namespace kadrona::app
