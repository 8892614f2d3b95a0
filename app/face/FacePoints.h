#pragma once

#include <QObject>

#include "imaging/face/Face.h"
#include "imaging/view/ViewTool.h"

namespace kadrona::dialogs {
class CheckSection;
}

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class FaceOverlay;
class MainActions;
class PhotoFace;

/// Lets the user drag the four points of the face on the photo, while the check's button is
/// pressed. All that is given outlives the object.
class FacePoints : public QObject, private imaging::view::ViewTool {
    Q_OBJECT

 public:
    FacePoints(PhotoFace& face, imaging::view::ImageView& view, FaceOverlay& overlay,
               dialogs::CheckSection& section, MainActions& actions);
    ~FacePoints() override;

 private:
    void SetMovable(bool movable);
    void ShowPoints();
    void Press(const imaging::view::ToolPointer& pointer) override;
    void Move(const imaging::view::ToolPointer& pointer) override;
    void Release() override;
    bool Key(const QKeyEvent& event) override;

    PhotoFace& face_;
    imaging::view::ImageView& view_;
    FaceOverlay& overlay_;
    dialogs::CheckSection& section_;
    imaging::FacePoint imaging::Face::*held_ = nullptr;
};

}  // namespace kadrona::app
