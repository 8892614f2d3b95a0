#pragma once

#include <QPointF>
#include <QRectF>
#include <QWidget>
#include <optional>
#include <vector>

#include "imaging/tone/Curves.h"
#include "imaging/tone/Histogram.h"

namespace kadrona::dialogs {

/// Lets the user shape the four tone curves of a set, one at a time, over the histogram.
///
///     255 +-----------o     A click in the field adds a point, a drag moves it. Dragging a point
///         |         /       out of the field, a right click on it or Delete removes it; two stay.
///         |     o /         Keys: Tab goes from point to point, the arrows move the selected one
///         |    /            (with Shift by ten), Insert adds one behind it.
///       0 o---------- 255
///
/// A set never gets more points than a preset file can hold.
class CurveEditor : public QWidget {
    Q_OBJECT

 public:
    explicit CurveEditor(QWidget* parent = nullptr);

    const imaging::CurveSet& Curves() const { return curves_; }
    void SetCurves(const imaging::CurveSet& curves);
    void ResetChannel();
    void ResetAll() { SetCurves(imaging::CurveSet()); }

    imaging::CurveChannel Channel() const { return channel_; }
    void SetChannel(imaging::CurveChannel channel);

    /// What shows behind the curve: luma for the combined channel, else the channel's own levels.
    void SetHistogram(const imaging::Histogram& histogram);

    /// Index of the selected point of the channel; -1 none.
    int SelectedPoint() const { return selected_; }

    /// Where a point lies in the widget.
    QPointF ToWidget(imaging::CurvePoint point) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 Q_SIGNALS:
    void CurvesChanged();
    /// The user wanted one more point than a preset file can hold.
    void PointRefused();

 protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;

 private:
    using Points = std::vector<imaging::CurvePoint>;

    /// A point on its way, and the others, which stay as they are.
    struct Drag {
        Points others;
        /// Where among the others the point belongs.
        size_t index;
    };

    // State (CurveEditor.cpp)
    const Points& ChannelPoints() const { return curves_[channel_].Points(); }
    void SetPoints(Points points, int selected);
    void Select(int index);
    void Describe();
    /// The point brought between its neighbours among the others.
    static imaging::CurvePoint KeptInOrder(const Points& others, size_t index,
                                           imaging::CurvePoint point);
    bool AddPoint(imaging::CurvePoint point);
    void MoveSelected(QPoint by);
    void RemovePoint(int index);
    void InsertBehindSelected();

    // Geometry
    QSize SizeWithField(int side) const;
    QRectF Field() const;
    imaging::CurvePoint FromWidget(QPointF position) const;
    int PointAt(QPointF position) const;
    void StartDrag(int index);

    // Painting (CurveEditorPainting.cpp)
    void PaintField(QPainter& painter) const;
    void PaintHistogram(QPainter& painter) const;
    void PaintScales(QPainter& painter) const;
    void PaintCurve(QPainter& painter, imaging::CurveChannel channel, double opacity) const;
    void PaintPoints(QPainter& painter) const;
    void PaintCrossHair(QPainter& painter) const;
    void PaintValues(QPainter& painter) const;

    imaging::CurveSet curves_;
    imaging::CurveChannel channel_ = imaging::CurveChannel::Rgb;
    imaging::Histogram histogram_;
    int selected_ = -1;
    std::optional<Drag> drag_;
    /// While it is over the field or drags a point.
    std::optional<QPointF> pointer_;
};

}  // namespace kadrona::dialogs
