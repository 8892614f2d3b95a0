#pragma once

#include <QObject>
#include <optional>

#include "imaging/retouch/CloneStamp.h"
#include "imaging/view/ViewTool.h"

class QStatusBar;

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class MainActions;
class PhotoSession;
class ViewActions;

/// The retouch stamp, a mode held in the checked state of acBeauty: with Shift a click takes the
/// source, without it a stroke copies. The wheel and the keys + - [ ] change the brush's size; with
/// Shift the wheel, and the keys , . its softness. The brush shows as a circle at the pointer, the
/// source as a cross.
class RetouchTool : public QObject, private imaging::view::ViewTool {
    Q_OBJECT

 public:
    /// All that is given outlives the object.
    RetouchTool(PhotoSession& session, imaging::view::ImageView& view, QStatusBar& statusBar,
                MainActions& actions, ViewActions& viewActions);
    ~RetouchTool() override;

 private:
    void acBeautyExecute();
    /// Ends the mode without touching the template, and forgets the source.
    void LeaveMode();
    void FollowAction(bool checked);
    void FollowPhoto();
    void ForgetSource();
    void ShowHint();
    void ChangeSize(double notches);
    void ChangeSoftness(double notches);
    bool IsOnPhoto(QPointF photo) const;
    double WidgetRadius() const;
    std::optional<QPointF> SourceMark() const;
    void PaintBrush(QPainter& painter) const;
    static void PaintCross(QPainter& painter, QPointF middle);

    void Press(const imaging::view::ToolPointer& pointer) override;
    void Move(const imaging::view::ToolPointer& pointer) override;
    void Release() override;
    void Leave() override;
    bool Wheel(double notches, Qt::KeyboardModifiers modifiers) override;
    bool Key(const QKeyEvent& event) override;
    QRectF OverlayArea() const override;
    void Paint(QPainter& painter) const override;

    PhotoSession& session_;
    imaging::view::ImageView& view_;
    QStatusBar& statusBar_;
    MainActions& actions_;
    ViewActions& viewActions_;
    imaging::CloneStamp stamp_;
    imaging::Brush brush_;
    /// The user has set its size.
    bool isBrushChosen_ = false;
    QSize photoSize_;
    /// In the view's coordinates, while the pointer is over it: the photo may move below.
    std::optional<QPointF> pointer_;
    bool takesSource_ = false;
};

}  // namespace kadrona::app
