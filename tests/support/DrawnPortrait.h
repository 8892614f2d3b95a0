#pragma once

#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QSvgRenderer>

namespace kadrona::testing {

/// The drawn portrait of assets/, 600 x 800 pixels, whose measures are known.
inline constexpr QSize DrawnSize(600, 800);
inline constexpr QPointF DrawnLeftEye(241.4, 329.8);
inline constexpr QPointF DrawnRightEye(359, 329.8);
inline constexpr QPointF DrawnChin(300, 517.4);
inline constexpr QPointF DrawnCrown(300, 137.8);

/// Needs the definition SAMPLE_PORTRAIT, the drawing's path, and Qt Svg.
inline QImage DrawnPortrait() {
    QImage image(DrawnSize, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QSvgRenderer(QStringLiteral(SAMPLE_PORTRAIT)).render(&painter);
    return image;
}

}  // namespace kadrona::testing
