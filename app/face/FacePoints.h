#pragma once

#include <QObject>
#include <array>
#include <optional>

#include "core/check/TemplateTable.h"
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
class PhotoSession;

/// Lets the user drag the four points of the face on the photo, while the check's button is
/// pressed. Where no face is found, guessed points stand in the photo, which make a face once each
/// of them has been dragged or clicked. All that is given outlives the object.
class FacePoints : public QObject, private imaging::view::ViewTool {
    Q_OBJECT

 public:
    FacePoints(PhotoSession& session, PhotoFace& face, imaging::view::ImageView& view,
               FaceOverlay& overlay, dialogs::CheckSection& section, MainActions& actions);
    ~FacePoints() override;

    /// Which end of the head is a point: the one that the check measures.
    void ShowCrown(core::Crown crown);

 private:
    using PointOfFace = imaging::FacePoint imaging::Face::*;

    void SetMovable(bool movable);
    void Begin();
    void End();
    void ShowPoints();
    std::array<PointOfFace, 4> Points() const;
    const imaging::Face* Shown() const;
    void Press(const imaging::view::ToolPointer& pointer) override;
    void Move(const imaging::view::ToolPointer& pointer) override;
    void Release() override;
    bool Key(const QKeyEvent& event) override;

    PhotoSession& session_;
    PhotoFace& face_;
    imaging::view::ImageView& view_;
    FaceOverlay& overlay_;
    dialogs::CheckSection& section_;
    MainActions& actions_;
    /// What the user points out, as long as points of it are guessed.
    std::optional<imaging::Face> marked_;
    PointOfFace top_ = &imaging::Face::crown;
    PointOfFace held_ = nullptr;
};

}  // namespace kadrona::app
