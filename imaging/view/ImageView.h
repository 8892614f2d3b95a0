#pragma once

#include <QFlags>
#include <QPointF>
#include <QWidget>
#include <chrono>
#include <memory>

#include "imaging/document/LayeredImage.h"
#include "imaging/tone/PixelFilter.h"

namespace kadrona::imaging::view {

class ViewTool;

/// Shows a layered image and lets the user zoom, pan, and move and scale the layers above the
/// photo.
///
/// The wheel zooms at the pointer; dragging beside the layer pans; dragging the current layer moves
/// it (a layer can be picked on its transparent parts too); its handles scale it with the aspect
/// ratio kept, and Escape takes a drag back; arrow keys move it by one photo pixel, with Ctrl
/// they scale it about its middle by one on either side, with Shift ten times as far. While
/// something moves the photo is drawn fast, at rest smoothly, at the screen's own pixels.
///
/// The view sets its cursor itself where the pointer can drag something. A cursor that its owner
/// sets shows everywhere else.
class ImageView : public QWidget {
    Q_OBJECT

 public:
    /// What the mouse may do with the view itself.
    enum class Interaction { None = 0, Zoom = 1, Pan = 2 };
    Q_DECLARE_FLAGS(Interactions, Interaction)

    /// Shows `image`, which outlives the view.
    explicit ImageView(LayeredImage& image, QWidget* parent = nullptr);
    ~ImageView() override;

    LayeredImage& Image();
    /// Brings the whole image into view.
    void Fit();
    /// The same, also when the view's size changes later, until the view is zoomed or panned, or
    /// the image's size changes.
    void FitUntilMoved();

    /// Between the two the view goes on showing what it shows; calls nest.
    void SuspendPainting();
    void ResumePainting();

    /// With Pan alone the view only pans, whatever lies under the pointer.
    void SetInteraction(Interactions interaction);
    Interactions CurrentInteraction() const;

    /// On: every change of size of the window or the image fits the image again. On at first; a
    /// zoom by the user switches it off.
    void SetAutomaticFit(bool on);
    bool AutomaticFit() const;

    /// Screen pixels per photo pixel times 100, about the middle of the view. At least an eighth of
    /// the fit, at most 3200.
    void SetZoomPercent(double percent);
    double ZoomPercent() const;

    /// Zooms to `percent` and brings a place of the photo into the view's middle, as far as the
    /// view's bounds let it.
    void ShowPart(double percent, QPointF middle);
    /// The place of the photo in the view's middle.
    QPointF Middle() const;

    /// Shows the photo as the filter would make it; the layers above stay as they are. Only what
    /// is visible is computed, at the size that it is shown in. Null shows the photo as it is.
    void SetPreviewFilter(PixelFilterPointer filter);
    const PixelFilterPointer& PreviewFilter() const;

    /// Gives the left mouse button to a tool, which stays the caller's and outlives its use here;
    /// null takes it back.
    void SetTool(ViewTool* tool);
    ViewTool* Tool() const;
    /// What the tool paints has changed by something else than the view's events.
    void RefreshTool();

    /// From widget coordinates to photo pixels and back.
    QPointF ToImage(QPointF widgetPosition) const;
    QPointF ToWidget(QPointF imagePosition) const;

    /// True while the user drags the view, a layer or a handle.
    bool IsInteracting() const;

    /// How long after the last movement the photo is drawn smoothly again.
    void SetSettleDelay(std::chrono::milliseconds delay);

 Q_SIGNALS:
    /// The user moved or resized a layer; sent at every step of a drag, when the layer has its new
    /// rectangle. A receiver may set a better one there and then.
    void LayerChangedByUser(int layer);
    /// A mouse button went down over the view, before the view handles it.
    void MousePressed(QPointF imagePosition, Qt::MouseButton button,
                      Qt::KeyboardModifiers modifiers);
    void ZoomChanged(double percent);
    /// Another part of the photo shows, or the same one in another size.
    void PartChanged();

 protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

 private:
    class Private;
    std::unique_ptr<Private> d_;
};

}  // namespace kadrona::imaging::view
