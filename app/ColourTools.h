#pragma once

#include <QObject>
#include <memory>

#include "app/ToolSurroundings.h"
#include "imaging/view/ViewTool.h"

namespace kadrona::dialogs {
class ColourAdjustment;
class TfmRGBKurve;
}  // namespace kadrona::dialogs

namespace kadrona::app {

/// The tools that change the photo's colours: white point (a mode, held in its action's checked
/// state), gradation, black and white, and the colour dialog. None of them does anything while the
/// retouch stamp is on, nor where a photo could not be read.
class ColourTools : public QObject, private imaging::view::ViewTool {
    Q_OBJECT

 public:
    explicit ColourTools(ToolSurroundings surroundings, QObject* parent = nullptr);
    ~ColourTools() override;

    void acSetWhitePointExecute();
    void acGradationExecute(dialogs::TfmRGBKurve& dialog);
    void acSchwarzweissExecute();
    void acColorConfigExecute();

    /// Ends the white point mode without touching template or zoom.
    void LeaveMode();

 private:
    bool MayWork() const;
    bool TemplateIsHidden() const;
    void FollowWhitePointAction(bool checked);
    void Press(const imaging::view::ToolPointer& pointer) override;
    bool Key(const QKeyEvent& event) override;
    void SetWhitePoint(QPoint pixel);

    ToolSurroundings window_;
    dialogs::ColourAdjustment* colourDialog_ = nullptr;
};

}  // namespace kadrona::app
