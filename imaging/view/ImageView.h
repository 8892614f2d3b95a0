#pragma once

#include <QFlags>
#include <QPointF>
#include <QWidget>
#include <memory>

#include "imaging/ImageDisplay.h"

namespace kadrona::imaging::view {

/// Shows a layered image and lets the user zoom, pan, and move and scale the layers above the
/// photo.
///
/// The wheel zooms at the pointer; dragging beside the layer pans; dragging the current layer moves
/// it (a layer can be picked on its transparent parts too); its handles scale it with the aspect
/// ratio kept; arrow keys move it by one photo pixel, with Shift by ten. While something moves the
/// photo is drawn fast, at rest smoothly, at the screen's own pixels.
class ImageView : public QWidget, public ImageDisplay {
    Q_OBJECT

 public:
    /// What the mouse may do with the view itself.
    enum class Interaction { None = 0, Zoom = 1, Pan = 2 };
    Q_DECLARE_FLAGS(Interactions, Interaction)

    explicit ImageView(QWidget* parent = nullptr);
    ~ImageView() override;

    LayeredImage& Image() override;
    void Fit() override;
    void Repaint() override;
    void SuspendPainting() override;
    void ResumePainting() override;

    /// With Pan alone the view only pans, whatever lies under the pointer.
    void SetInteraction(Interactions interaction);
    Interactions CurrentInteraction() const;

    /// On: every change of size of the window or the image fits the image again.
    void SetAutomaticFit(bool on);
    bool AutomaticFit() const;

    /// Screen pixels per photo pixel times 100, about the middle of the view.
    void SetZoomPercent(double percent);
    double ZoomPercent() const;

    /// From widget coordinates to photo pixels and back.
    QPointF ToImage(QPointF widgetPosition) const;
    QPointF ToWidget(QPointF imagePosition) const;

    /// True while the user drags the view, a layer or a handle.
    bool IsInteracting() const;

 Q_SIGNALS:
    /// The user moved or resized a layer; sent at every step of a drag.
    void LayerChangedByUser(int layer);
    /// A mouse button went down over the view, before the view handles it.
    void MousePressed(QPointF imagePosition, Qt::MouseButton button,
                      Qt::KeyboardModifiers modifiers);
    void ZoomChanged(double percent);

 private:
    class Private;
    std::unique_ptr<Private> d_;
};

}  // namespace kadrona::imaging::view
