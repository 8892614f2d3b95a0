#pragma once

#include <QObject>
#include <QRect>

namespace kadrona::imaging::view {
class ImageView;
}

namespace kadrona::app {

class MainActions;
class PhotoSession;

/// Looking at the photo: zoom, the keys that pan, undo, and the template layer over it. All that is
/// given outlives the object.
class ViewActions : public QObject {
    Q_OBJECT

 public:
    ViewActions(PhotoSession& session, imaging::view::ImageView& view, MainActions& actions);

    /// Does nothing where there is no template.
    void ShowTemplateLayer(bool show);
    void ZoomFit();
    void ZoomFull();
    /// Another picture came: no mode is on, the mouse zooms and pans, and all of it shows.
    void StartAnew();
    /// A turn may leave the template outside of the photo, where nobody can take hold of it: pushes
    /// it back inside. Undoing the turn brings it back.
    void KeepTemplateOnPhoto();

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void acShowLayerExecute();
    void acUndoExecute();
    void ViewLayerNotify(int layer);
    void ViewMouseDown();
    void ViewKeyDown();
    void ViewKeyUp();

    PhotoSession& session_;
    imaging::view::ImageView& view_;
    MainActions& actions_;
};

}  // namespace kadrona::app
