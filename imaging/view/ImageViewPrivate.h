#pragma once

#include <QPixmap>
#include <QTimer>
#include <functional>
#include <optional>
#include <variant>
#include <vector>

#include "imaging/view/CursorOverride.h"
#include "imaging/view/ImageView.h"
#include "imaging/view/LayerHandles.h"
#include "imaging/view/LayerPainter.h"
#include "imaging/view/SelectionFrame.h"
#include "imaging/view/ViewGeometry.h"
#include "imaging/view/ViewTool.h"

namespace kadrona::imaging::view {

/// The view's state, and what its events do. All positions are device pixels unless they say
/// otherwise.
class ImageView::Private {
 public:
    /// Until when a fit follows the view's size. Before it is painted, that may still change with
    /// the layout of its window.
    enum class FollowingFit { None, UntilPainted, UntilMoved };

    Private(ImageView& view, LayeredImage& image);

    // Geometry.
    double DeviceScale() const { return view_.devicePixelRatioF(); }
    /// Takes over the widget's size and the screen's scale.
    void UpdateViewSize();
    void Fit(FollowingFit following);
    void ChangeZoom(double zoom, QPointF fixed);
    void ZoomByUser(double zoom, QPointF fixed);
    void Pan(QPointF imagePoint, QPointF to);
    void ShowPart(double zoom, QPointF middle);
    /// Runs `change` and tells what came of it: zoom, repaint.
    void ChangeGeometry(const std::function<void()>& change);

    // Painting.
    void Paint(const QRect& dirty);
    void PaintImage(QPainter& painter, const QRect& dirty);
    void Settle();
    /// Works for a few milliseconds on what could not be painted well at once.
    void Prepare();
    void StartMoving();
    void RepaintChangedLayers();
    void TakePhoto();
    void TakeEdit(const QRect& area);
    /// Paints the photo anew.
    void UpdatePhoto();

    // The tool.
    void SetTool(ViewTool* tool);
    /// True where the tool takes the left button now.
    bool IsToolActive() const { return tool_ != nullptr && !IsPanOnly() && !image_.IsEmpty(); }
    void PressTool(const QMouseEvent& event);
    void MoveTool(const QMouseEvent& event);
    void EndToolPress();
    bool PassToTool(const QWheelEvent& event, double notches);
    bool PassToTool(const QKeyEvent& event);
    void UpdateOverlay();
    void PaintOverlay(QPainter& painter) const;
    bool IsPanOnly() const { return interactions_ == Interactions(Interaction::Pan); }

    // Input.
    void Press(QPointF position, Qt::MouseButton button);
    void MoveTo(QPointF position);
    void EndDrag();
    void CancelDrag();
    bool IsDragging() const { return !std::holds_alternative<std::monostate>(drag_); }
    bool PressKey(int key, bool shift);
    bool PressScalingKey(int key, bool shift);
    void UpdateCursor();

    struct PanDrag {
        QPointF imagePoint;
        Qt::MouseButton button;
    };
    struct MovedLayer {
        int layer;
        LayerDrag drag;
        QPointF pressedAt;
        bool isMoving;
    };

    ImageView& view_;
    LayeredImage& image_;
    ViewGeometry geometry_;
    LayerPainter painter_;
    CursorOverride cursor_;
    QTimer settleTimer_;
    QTimer prepareTimer_;
    Quality quality_ = Quality::Smooth;
    Interactions interactions_{Interactions(Interaction::Zoom) | Interaction::Pan};
    bool automaticFit_ = true;
    FollowingFit followingFit_ = FollowingFit::None;
    int suspensions_ = 0;
    /// What shows while painting is suspended.
    QPixmap lastFrame_;
    std::vector<LayerAppearance> paintedLayers_;
    PixelFilterPointer filter_;
    /// Of the photo's pixels after the last edit that TakeEdit saw.
    qint64 editedPixels_ = 0;
    ViewTool* tool_ = nullptr;
    bool isToolPressed_ = false;
    QRect paintedOverlay_;
    bool showsFocus_ = false;
    std::variant<std::monostate, PanDrag, MovedLayer> drag_;
    /// Where the pointer was last seen.
    QPointF pointer_;

 private:
    struct Target {
        int layer;
        Handle handle;
    };
    std::optional<Target> TargetAt(QPointF position) const;
    void StartLayerDrag(const Target& target, QPointF position);
    void SetLayerByUser(int layer, const QRect& rectangle);
    bool MoveCurrentLayer(QPoint by);
    bool ScaleCurrentLayer(int by);
    ToolPointer PointerOf(QPointF widgetPosition, Qt::KeyboardModifiers modifiers) const;
};

}  // namespace kadrona::imaging::view
