#include "app/face/FaceActions.h"

#include "app/face/FaceOverlay.h"
#include "imaging/view/ImageView.h"

namespace kadrona::app {

FaceActions::FaceActions(PhotoSession& session, imaging::view::ImageView& view, core::TData& data,
                         const core::Settings& settings, core::UserInterface& ui,
                         MainActions& actions, RotateActions& rotateActions,
                         dialogs::SidePanel& panel, dialogs::CheckSection& section, FaceLine& line)
    : face_(session, *view.window()),
      overlay_(*new FaceOverlay(view, line)),
      points_(session, face_, view, overlay_, section, actions),
      proposal_(session, face_, overlay_, data, settings, ui, actions),
      leveller_(session, face_, view, overlay_, proposal_, actions, rotateActions),
      panel_(session, face_, *view.window(), data, settings, ui, actions, panel, section) {
    QObject::connect(&panel_, &CheckPanel::CrownMeasured, &points_, &FacePoints::ShowCrown);
}

}  // namespace kadrona::app
