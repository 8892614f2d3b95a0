#pragma once

#include <QObject>

#include "core/check/FacePlacement.h"

namespace kadrona::core {
class Settings;
class TData;
class UserInterface;
}  // namespace kadrona::core

namespace kadrona::app {

class FaceOverlay;
class MainActions;
class PhotoFace;
class PhotoSession;

/// Puts the template on the photo's face: when the user asks for it, when the line under the photo
/// that offers it is taken, or at once, as the profile says. All that is given outlives the object.
class PlaceProposal : public QObject {
    Q_OBJECT

 public:
    PlaceProposal(PhotoSession& session, PhotoFace& face, FaceOverlay& overlay,
                  const core::TData& data, const core::Settings& settings, core::UserInterface& ui,
                  MainActions& actions);

    /// Whether the template stands where it belongs on the photo's face. False where no face is
    /// known; none is looked for.
    bool StandsOnFace() const;
    /// Puts the template to its place on the photo's face anew; stays where none is found. Throws
    /// as PhotoFace::Find.
    void Realign();

 private:
    void acAlignToFaceExecute();
    bool IsWanted() const;
    void FollowPhoto();
    void FollowPoints();
    void FollowSession();
    void Offer();
    void Propose(const core::FacePlacement& placement);
    void End();
    core::FacePlacement Place() const;
    bool StandsAt(const QRect& place) const;
    void Take(const core::FacePlacement& placement);
    void Remark(const core::FacePlacement& placement);

    PhotoSession& session_;
    PhotoFace& face_;
    FaceOverlay& overlay_;
    const core::TData& data_;
    const core::Settings& settings_;
    core::UserInterface& ui_;
    MainActions& actions_;
    bool offered_ = false;   ///< once for each photo
    bool toldNone_ = false;  ///< that the photo as it is shows no face
};

}  // namespace kadrona::app
