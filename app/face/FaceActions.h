#pragma once

#include "app/face/CheckPanel.h"
#include "app/face/FacePoints.h"
#include "app/face/HeadLeveller.h"
#include "app/face/PhotoFace.h"
#include "app/face/PlaceProposal.h"

namespace kadrona::app {

class FaceLine;
class RotateActions;

/// What the window does with the photo's face, in the order in which the parts follow a change of
/// the photo. All that is given outlives the object.
class FaceActions {
 public:
    FaceActions(PhotoSession& session, imaging::view::ImageView& view, core::TData& data,
                const core::Settings& settings, core::UserInterface& ui, MainActions& actions,
                RotateActions& rotateActions, dialogs::SidePanel& panel,
                dialogs::CheckSection& section, FaceLine& line);

    /// As CheckPanel's.
    bool ConfirmCut() { return panel_.ConfirmCut(); }
    bool MayCut() { return panel_.MayCut(); }
    QString CutRemark() const { return panel_.CutRemark(); }

 private:
    PhotoFace face_;
    FaceOverlay& overlay_;  ///< the view's child
    FacePoints points_;
    PlaceProposal proposal_;
    HeadLeveller leveller_;
    CheckPanel panel_;
};

}  // namespace kadrona::app
