#pragma once

#include <QPixmap>
#include <QWidget>
#include <optional>

namespace kadrona::dialogs {

/// A small, slightly transparent picture over a levelling guide, turned and moved with the mouse.
///
///     +--------------------------+
///     |      _____               |
///     |   ___     \___           |   the left button turns it about its middle,
///     |---\-------------\- guide |   the right one moves it
///     |    \          ___\       |
///     +--------------------------+
///
/// The wheel and the arrow keys turn by a tenth of a degree, with Shift by a whole one; Home and a
/// double-click put it upright again.
class RotationPreview : public QWidget {
    Q_OBJECT

 public:
    static constexpr int LargestSide = 480;

    explicit RotationPreview(QWidget* parent = nullptr);

    /// Width and height of the widget, logical pixels; LargestSide at first.
    void SetSide(int side);

    /// Shows another picture, upright. A null image takes it away.
    void SetPicture(const QImage& picture);

    /// Counter-clockwise, above -180 up to 180.
    double Degrees() const { return degrees_; }
    void SetDegrees(double degrees);

 Q_SIGNALS:
    void DegreesChanged(double degrees);

 protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

 private:
    /// Widget pixels per pixel of the picture.
    double Scale() const;
    /// From the picture's pixels, upright and in its place, to the widget's.
    QTransform ToWidget() const;
    QPointF Middle() const;
    /// Direction from the picture's middle, counter-clockwise from the right.
    double DirectionOf(QPointF position) const;
    void PaintGrid(QPainter& painter) const;
    void UpdateCursor();

    QPixmap picture_;
    double degrees_ = 0;
    /// In the picture's pixels.
    QPointF shift_;
    Qt::MouseButton dragging_ = Qt::NoButton;
    QPointF lastPosition_;
};

}  // namespace kadrona::dialogs
