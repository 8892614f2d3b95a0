#include "core/TemplateDrawing.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cstdlib>

namespace kadrona::core {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 LongestCanvasSide = 10000;

/// Beyond this a coordinate or a width cannot matter on the largest canvas, and the painter's own
/// range (fixed point, 16 bits before the point) ends.
constexpr qint32 FarthestCoordinate = 30000;

constexpr QRgb White = 0xffffffff;

int CanvasSide(qint32 first, qint32 second) {
    const qint64 side = std::abs(qint64{first} - second);
    if (side == 0 || side > LongestCanvasSide) {
        throw TemplateFileError(
            u"Die Schablone ist beschädigt: Eine Seite ihrer Zeichenfläche ist %1 "
            u"Zehntelmillimeter "
            "lang, erlaubt sind 1 bis %2."_s.arg(side)
                .arg(LongestCanvasSide));
    }
    return static_cast<int>(side);
}

QColor ColourOf(const TMask& element) {
    const auto bits = static_cast<quint32>(element.colour);
    return {static_cast<int>(bits & 0xff), static_cast<int>(bits >> 8 & 0xff),
            static_cast<int>(bits >> 16 & 0xff)};
}

Qt::BrushStyle FillStyleOf(const TMask& element) {
    constexpr std::array Styles{Qt::SolidPattern, Qt::NoBrush,         Qt::HorPattern,
                                Qt::VerPattern,   Qt::FDiagPattern,    Qt::BDiagPattern,
                                Qt::CrossPattern, Qt::DiagCrossPattern};
    const auto ordinal = static_cast<quint32>(element.brushStyle);
    return ordinal < Styles.size() ? Styles.at(ordinal) : Qt::NoBrush;
}

/// The pixels between the element's edges, whichever edge is the greater; the right and the bottom
/// edge are outside.
QRect AreaOf(const TMask& element) {
    const auto near = [](qint32 coordinate) {
        return std::clamp(coordinate, -FarthestCoordinate, FarthestCoordinate);
    };
    const auto [left, right] = std::minmax({near(element.left), near(element.right)});
    const auto [top, bottom] = std::minmax({near(element.top), near(element.bottom)});
    return {left, top, right - left, bottom - top};
}

void DrawShape(QPainter& painter, const TMask& element) {
    const QRect area = AreaOf(element);
    if (area.isEmpty()) {
        return;
    }
    // The painter's outline lies on the edges it is given, so that the last row and column of the
    // area are the edges of the shape.
    const QRect outline(area.topLeft(), area.size() - QSize(1, 1));
    if (element.shape == TMask::Rectangle) {
        painter.drawRect(outline);
    } else if (element.shape == TMask::Ellipse) {
        painter.drawEllipse(outline);
    }
}

void MakeWhiteTransparent(QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::replace(line, line + image.width(), White, QRgb{0});
    }
}

}  // namespace

QSize TemplateCanvas(const std::vector<TMask>& elements) {
    if (elements.empty()) {
        throw TemplateFileError(u"Die Schablone ist leer: Sie enthält kein Element."_s);
    }
    const TMask& canvas = elements.front();
    return {CanvasSide(canvas.left, canvas.right), CanvasSide(canvas.top, canvas.bottom)};
}

QImage DrawTemplate(const std::vector<TMask>& elements) {
    QImage image(TemplateCanvas(elements), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        throw TemplateFileError(
            u"Für die Zeichenfläche der Schablone reicht der Speicher nicht."_s);
    }
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QPen pen(Qt::black, 1, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin);
    for (size_t i = 0; i < elements.size(); ++i) {
        const TMask& element = elements[i];
        const QBrush brush(ColourOf(element), FillStyleOf(element));
        pen.setColor(brush.color());
        if (element.penWidth >= 0) {
            pen.setWidth(std::min(element.penWidth, FarthestCoordinate));
        }
        painter.setPen(pen);
        painter.setBrush(brush);
        DrawShape(painter, element);
        if (i == 0) {
            painter.fillRect(AreaOf(element), brush);
        }
    }
    painter.end();
    MakeWhiteTransparent(image);
    return image;
}

}  // namespace kadrona::core
