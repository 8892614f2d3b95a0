// The text of a MetafileCanvas.
#include <QFontMetricsF>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <numeric>

#include "imaging/metafile/MetafileCanvas.h"

namespace kadrona::imaging {

namespace {

// Bits of SetTextAlign.
constexpr unsigned UpdatePosition = 1;
constexpr unsigned HorizontalMask = 6;
constexpr unsigned Right = 2;
constexpr unsigned Centre = 6;
constexpr unsigned VerticalMask = 24;
constexpr unsigned Bottom = 8;
constexpr unsigned Baseline = 24;

/// From the reference point to the start of the line on its baseline.
QPointF AlignmentOffset(unsigned alignment, double width, const QFontMetricsF& metrics) {
    QPointF offset(0, metrics.ascent());
    if ((alignment & HorizontalMask) == Centre) {
        offset.setX(-width / 2);
    } else if ((alignment & HorizontalMask) == Right) {
        offset.setX(-width);
    }
    if ((alignment & VerticalMask) == Baseline) {
        offset.setY(0);
    } else if ((alignment & VerticalMask) == Bottom) {
        offset.setY(-metrics.descent());
    }
    return offset;
}

}  // namespace

QFont MetafileCanvas::ScaledFont(double pixelsPerUnit) const {
    constexpr double DefaultHeight = 12;
    constexpr double LargestPixelSize = 2000;
    // The height of the line is the letters' and about a fifth.
    constexpr double LettersPerLine = 0.83;
    const MetafileFont& wanted = state_.font;
    double height = std::abs(wanted.height) * (wanted.height > 0 ? LettersPerLine : 1);
    height = wanted.height == 0 ? DefaultHeight : height * pixelsPerUnit;
    QFont font(wanted.family);
    font.setPixelSize(static_cast<int>(std::lround(
        std::isfinite(height) ? std::clamp(height, 1.0, LargestPixelSize) : DefaultHeight)));
    font.setWeight(QFont::Weight(std::clamp(wanted.weight == 0 ? 400 : wanted.weight, 1, 1000)));
    font.setItalic(wanted.italic);
    font.setUnderline(wanted.underlined);
    font.setStrikeOut(wanted.struckOut);
    return font;
}

void MetafileCanvas::DrawTextLine(QPainter& painter, const TextDrawing& drawing,
                                  double pixelsPerUnit) {
    const QFontMetricsF metrics(painter.font());
    const bool spaced = qsizetype(drawing.advances.size()) == drawing.text.size();
    const double width =
        spaced
            ? std::accumulate(drawing.advances.begin(), drawing.advances.end(), 0.0) * pixelsPerUnit
            : metrics.horizontalAdvance(drawing.text);
    QPointF start = AlignmentOffset(state_.textAlignment, width, metrics);
    if (state_.opaqueBackground) {
        painter.fillRect(QRectF(start.x(), start.y() - metrics.ascent(), width, metrics.height()),
                         state_.backgroundColour);
    }
    painter.setPen(state_.textColour);
    if (!spaced) {
        painter.drawText(start, drawing.text);
    } else {
        for (qsizetype i = 0; i < drawing.text.size(); ++i) {
            painter.drawText(start, QString(drawing.text[i]));
            start.rx() += drawing.advances[static_cast<size_t>(i)] * pixelsPerUnit;
        }
    }
    if (state_.textAlignment & UpdatePosition) {
        state_.position += QPointF(width / pixelsPerUnit, 0);
    }
}

void MetafileCanvas::Draw(const TextDrawing& drawing) {
    if ((drawing.options & TextDrawing::Opaque) && !drawing.rectangle.isEmpty()) {
        const QBrush kept = std::exchange(state_.brush, state_.backgroundColour);
        FillRectangle(drawing.rectangle, rasteroperation::PatternCopy);
        state_.brush = kept;
    }
    const QTransform toImage = ToImage();
    const double pixelsPerUnit = std::hypot(toImage.m21(), toImage.m22());
    // Without an application there are no fonts.
    if (drawing.text.isEmpty() || !qGuiApp || !(pixelsPerUnit > 0) ||
        !std::isfinite(pixelsPerUnit)) {
        return;
    }
    const QFont font = ScaledFont(pixelsPerUnit);
    Charge(double(drawing.text.size()) * font.pixelSize() * font.pixelSize() * 4);
    const QPointF reference =
        toImage.map(state_.textAlignment & UpdatePosition ? state_.position : drawing.reference);
    painter_.save();
    if (drawing.options & TextDrawing::Clipped) {
        ClipTo(drawing.rectangle);
    }
    painter_.translate(std::clamp(reference.x(), -1e6, 1e6), std::clamp(reference.y(), -1e6, 1e6));
    painter_.rotate(-state_.font.escapementDegrees);
    painter_.setFont(font);
    DrawTextLine(painter_, drawing, pixelsPerUnit);
    painter_.restore();
    hasDrawn_ = true;
}

}  // namespace kadrona::imaging
