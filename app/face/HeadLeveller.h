#pragma once

#include <QLineF>
#include <QObject>
#include <optional>

#include "imaging/view/ViewTool.h"

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class FaceOverlay;
class MainActions;
class PhotoFace;
class PhotoSession;
class PlaceProposal;
class RotateActions;

/// Turns the photo until the eyes lie level: by the face that was found, or by a line that the user
/// draws through both pupils. All that is given outlives the object.
class HeadLeveller : public QObject, private imaging::view::ViewTool {
    Q_OBJECT

 public:
    HeadLeveller(PhotoSession& session, PhotoFace& face, imaging::view::ImageView& view,
                 FaceOverlay& overlay, PlaceProposal& proposal, MainActions& actions,
                 RotateActions& rotateActions);
    ~HeadLeveller() override;

 private:
    void acLevelHeadExecute();
    void acLevelByLineExecute();
    void FollowAction(bool checked);
    void EndMode();
    void Level(double tiltDegrees);
    void Press(const imaging::view::ToolPointer& pointer) override;
    void Move(const imaging::view::ToolPointer& pointer) override;
    void Release() override;
    bool Key(const QKeyEvent& event) override;

    PhotoSession& session_;
    PhotoFace& face_;
    imaging::view::ImageView& view_;
    FaceOverlay& overlay_;
    PlaceProposal& proposal_;
    MainActions& actions_;
    RotateActions& rotateActions_;
    std::optional<QLineF> line_;  ///< while it is drawn, photo pixels
};

}  // namespace kadrona::app
