#include "core/templates/TemplateDrawing.h"

#include <QPainter>
#include <QPainterPath>
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

/// Hatching becomes a picture that repeats, because it would not follow the painter's scale.
QBrush BrushOf(const TMask& element) {
    QBrush brush(ColourOf(element), FillStyleOf(element));
    if (brush.style() >= Qt::HorPattern && brush.style() <= Qt::DiagCrossPattern) {
        constexpr int Period = 8;
        QImage period(Period, Period, QImage::Format_ARGB32_Premultiplied);
        period.fill(Qt::transparent);
        QPainter(&period).fillRect(period.rect(), brush);
        brush.setTextureImage(period);
    }
    return brush;
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

/// In pixels of the canvas; a negative width leaves that of the element before.
int PenWidthOf(const TMask& element, int before) {
    return element.penWidth >= 0 ? std::clamp(element.penWidth, 1, FarthestCoordinate) : before;
}

/// The outline of a shape that fills `area`, none for an unknown shape or an empty area.
QPainterPath PathOf(const TMask& element, const QRect& area) {
    QPainterPath path;
    if (area.isEmpty()) {
        return path;
    }
    if (element.shape == TMask::Rectangle) {
        path.addRect(area);
    } else if (element.shape == TMask::Ellipse) {
        path.addEllipse(area);
    }
    return path;
}

/// The fill, and over it the outline as the ring between two shapes. The outline is centred on the
/// outermost pixels of the area; of an even width the greater half lies to the left and above. A
/// ring with whole edges comes out symmetrical, which a path stroked without antialiasing does not.
void DrawShape(QPainter& painter, const TMask& element, int penWidth, const QBrush& brush) {
    const QRect area = AreaOf(element);
    painter.fillPath(PathOf(element, area), brush);

    const int outside = penWidth / 2;
    const int inside = penWidth - outside;
    const int beyond = inside - 1;
    const QRect outer = area.adjusted(-outside, -outside, beyond, beyond);
    const QRect inner = area.adjusted(inside, inside, -outside - 1, -outside - 1);
    QPainterPath ring = area.isEmpty() ? QPainterPath() : PathOf(element, outer);
    ring.addPath(PathOf(element, inner));
    painter.fillPath(ring, brush.color());
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

void RequireQuickDrawing(const std::vector<TMask>& elements, int pixelsPerUnit) {
    constexpr size_t MostElements = 10'000;
    constexpr qint64 MostPixels = 1'000'000'000;
    const QRect canvas(QPoint(), TemplateCanvas(elements));
    qint64 pixels = 0;
    int penWidth = 1;
    for (const TMask& element : elements) {
        penWidth = PenWidthOf(element, penWidth);
        const QRect outline = AreaOf(element).adjusted(-penWidth, -penWidth, penWidth, penWidth);
        const QRect drawn = outline.intersected(canvas);
        pixels += qint64{drawn.width()} * drawn.height() * pixelsPerUnit * pixelsPerUnit;
    }
    if (elements.size() > MostElements || pixels > MostPixels) {
        throw TemplateFileError(
            u"Die Schablone hat %1 Elemente mit zusammen %2 Millionen Bildpunkten; das ist mehr, "
            u"als gezeichnet wird."_s.arg(elements.size())
                .arg(pixels / 1'000'000));
    }
}

QImage DrawTemplate(const std::vector<TMask>& elements, int pixelsPerUnit) {
    RequireQuickDrawing(elements, pixelsPerUnit);
    QImage image(TemplateCanvas(elements) * pixelsPerUnit, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        throw TemplateFileError(
            u"Für die Zeichenfläche der Schablone reicht der Speicher nicht."_s);
    }
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(pixelsPerUnit, pixelsPerUnit);
    int penWidth = 1;
    for (size_t i = 0; i < elements.size(); ++i) {
        const TMask& element = elements[i];
        const QBrush brush = BrushOf(element);
        penWidth = PenWidthOf(element, penWidth);
        DrawShape(painter, element, penWidth, brush);
        if (i == 0) {
            painter.fillRect(AreaOf(element), brush);
        }
    }
    painter.end();
    MakeWhiteTransparent(image);
    return image;
}

}  // namespace kadrona::core
