#pragma once

#include <QObject>

namespace kadrona::core {
class TData;
}

namespace kadrona::app {

class MainActions;
class PhotoSession;
class ViewActions;

/// Turning the photo: by quarters, and by the angle that the user levels it with. All that is given
/// outlives the object.
class RotateActions : public QObject {
    Q_OBJECT

 public:
    RotateActions(PhotoSession& session, core::TData& data, MainActions& actions,
                  ViewActions& viewActions);

    /// A quarter turn, counter-clockwise where `degrees` is positive, and the whole photo in view.
    void RotatePhoto(int degrees);
    /// Turns the photo counter-clockwise in one undo step; the zoom stays. Throws platform::Error.
    /// Precondition: there is a photo.
    void LevelPhoto(double degrees);

 private:
    void QuarterTurn(int degrees);
    void acRotateDlgExecute();
    template <typename Turn>
    void TurnInOneStep(Turn&& turn);

    PhotoSession& session_;
    core::TData& data_;
    ViewActions& viewActions_;
};

}  // namespace kadrona::app
