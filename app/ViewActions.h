#pragma once

#include <QObject>
#include <QRect>
#include <vector>

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
    /// A turn of a photo of the size `before` may leave the template outside, where nobody can take
    /// hold of it: pushes it back inside. Undoing the turn brings it back.
    void KeepTemplateOnPhoto(QSize before);

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    /// Where a turn of the photo pushed the template.
    struct PushedTemplate {
        QSize photo;  ///< size before the turn
        QRect from;
        QRect to;
    };

    void acShowLayerExecute();
    void acUndoExecute();
    void MoveTemplateBack();
    void ViewLayerNotify(int layer);
    void ViewMouseDown();
    void ViewKeyDown();
    void ViewKeyUp();

    PhotoSession& session_;
    imaging::view::ImageView& view_;
    MainActions& actions_;
    std::vector<PushedTemplate> pushed_;
};

}  // namespace kadrona::app
