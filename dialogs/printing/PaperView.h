#pragma once

#include <QImage>
#include <QWidget>
#include <optional>
#include <vector>

#include "printing/SheetOnPaper.h"

namespace kadrona::dialogs {

/// Shows a sheet on its paper to scale: the paper's edge with its millimetres, hatched what the
/// printer does not reach, the photos with theirs, red what of them is cut off, and as a dashed
/// frame the sheet as the printer is told to print it where a calibration makes that another place.
/// The wheel or + and - zoom, dragging or the arrow keys move, a double-click or 0 shows the whole.
class PaperView : public QWidget {
    Q_OBJECT

 public:
    explicit PaperView(QWidget* parent = nullptr);

    /// Shows the sheet with its pictures, which copies and texts name by their index; the zoom
    /// stays.
    void ShowSheet(const printing::SheetOnPaper& sheet, const std::vector<QImage>& pictures);
    /// Shows a text instead.
    void ShowText(const QString& text);

    /// Times the size at which the whole paper is seen, 1 ... MostZoom.
    double Zoom() const { return zoom_; }
    static constexpr double MostZoom = 12;
    /// Where millimetres of the sheet lie on the widget.
    QPointF ToWidget(QPointF millimetres) const;

    QSize sizeHint() const override { return {430, 430}; }

 protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

 private:
    QRectF ToWidget(const QRectF& millimetres) const;
    double PixelsPerMillimetre() const;
    void ZoomAt(QPointF widgetPlace, double zoom);
    void MoveBy(QPointF pixels);
    void KeepInSight();
    void PaintPaper(QPainter& painter) const;
    void PaintCopies(QPainter& painter) const;
    void PaintEdgeOverCopies(QPainter& painter) const;
    void PaintPaperSize(QPainter& painter) const;
    void PaintPicture(QPainter& painter, const QRectF& millimetres, size_t picture) const;

    std::optional<printing::SheetOnPaper> sheet_;
    /// What is seen without zoom: the paper, and what of the photos lies beyond it.
    QRectF whole_;
    QString text_;
    /// Of each picture: as large as it is ever shown sharp, and each half as large as the one
    /// before, so that a frame scales by less than two.
    std::vector<std::vector<QImage>> pictures_;
    /// Tells whether they are shown already.
    std::vector<qint64> keys_;
    double zoom_ = 1;
    /// What of the sheet stands in the widget's middle, millimetres.
    QPointF middle_;
    QPointF dragged_;
};

}  // namespace kadrona::dialogs
