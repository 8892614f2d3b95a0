// How the curve editor looks.

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <span>

#include "dialogs/curves/CurveEditor.h"
#include "imaging/tone/MonotoneCubic.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

// In logical pixels.
constexpr double PointRadius = 4;
constexpr double ScaleWidth = 8;
constexpr double ScaleGap = 8;

constexpr QColor PointColour(0xd0, 0x20, 0x20);
constexpr QColor Red(0xc8, 0x32, 0x32);
constexpr QColor Green(0x2e, 0x8b, 0x57);
constexpr QColor Blue(0x1a, 0x6f, 0xb5);

QColor ColourOf(imaging::CurveChannel channel, const QPalette& palette) {
    switch (channel) {
        case imaging::CurveChannel::Red:
            return Red;
        case imaging::CurveChannel::Green:
            return Green;
        case imaging::CurveChannel::Blue:
            return Blue;
        default:
            return palette.color(QPalette::Text);
    }
}

const imaging::LevelCounts& LevelsOf(const imaging::Histogram& histogram,
                                     imaging::CurveChannel channel) {
    switch (channel) {
        case imaging::CurveChannel::Red:
            return histogram.red;
        case imaging::CurveChannel::Green:
            return histogram.green;
        case imaging::CurveChannel::Blue:
            return histogram.blue;
        default:
            return histogram.luma;
    }
}

QColor Faded(QColor colour, double opacity) {
    colour.setAlphaF(static_cast<float>(opacity));
    return colour;
}

}  // namespace

void CurveEditor::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    PaintField(painter);
    PaintScales(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const imaging::CurveChannel other :
         {imaging::CurveChannel::Rgb, imaging::CurveChannel::Red, imaging::CurveChannel::Green,
          imaging::CurveChannel::Blue}) {
        if (other != channel_ && !curves_[other].IsIdentity()) {
            PaintCurve(painter, other, 0.3);
        }
    }
    PaintCurve(painter, channel_, isEnabled() ? 1.0 : 0.4);
    PaintCrossHair(painter);
    PaintPoints(painter);
    PaintValues(painter);
}

void CurveEditor::PaintField(QPainter& painter) const {
    const QRectF field = Field();
    painter.fillRect(field, palette().base());
    painter.setRenderHint(QPainter::Antialiasing);
    PaintHistogram(painter);
    painter.setPen(QPen(Faded(palette().color(QPalette::Text), 0.12), 1));
    for (int quarter = 1; quarter < 4; ++quarter) {
        const QPointF way(field.width() * quarter / 4, field.height() * quarter / 4);
        const double x = std::round(field.left() + way.x()) + 0.5;
        const double y = std::round(field.top() + way.y()) + 0.5;
        painter.drawLine(QPointF(x, field.top()), QPointF(x, field.bottom()));
        painter.drawLine(QPointF(field.left(), y), QPointF(field.right(), y));
    }
    painter.setPen(QPen(Faded(palette().color(QPalette::Text), 0.35), 1, Qt::DashLine));
    painter.drawLine(field.bottomLeft(), field.topRight());
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight), 2)
                              : QPen(Faded(palette().color(QPalette::Text), 0.5), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(field);
}

/// Heights are square roots, for few pixels matter as well as many. Black and white, often more
/// than all else together, may reach beyond the field.
void CurveEditor::PaintHistogram(QPainter& painter) const {
    const imaging::LevelCounts& counts = LevelsOf(histogram_, channel_);
    const std::span between(counts.begin() + 1, counts.end() - 1);
    const double highest = std::sqrt(static_cast<double>(std::ranges::max(between)));
    if (highest == 0) {
        return;
    }
    const QRectF field = Field();
    const double step = field.width() / static_cast<double>(counts.size());
    QPainterPath outline(field.bottomLeft());
    for (size_t level = 0; level < counts.size(); ++level) {
        const double share =
            std::min(std::sqrt(static_cast<double>(counts.at(level))) / highest, 1.0);
        const double top = field.bottom() - share * (field.height() - 2);
        const double left = field.left() + static_cast<double>(level) * step;
        outline.lineTo(left, top);
        outline.lineTo(left + step, top);
    }
    outline.lineTo(field.bottomRight());
    const QColor colour =
        channel_ == imaging::CurveChannel::Rgb ? QColor(Qt::gray) : ColourOf(channel_, palette());
    painter.fillPath(outline, Faded(colour, 0.28));
}

/// Which brightness the ends of the axes stand for.
void CurveEditor::PaintScales(QPainter& painter) const {
    const QRectF field = Field();
    const QColor light = channel_ == imaging::CurveChannel::Red     ? QColor(Qt::red)
                         : channel_ == imaging::CurveChannel::Green ? QColor(Qt::green)
                         : channel_ == imaging::CurveChannel::Blue  ? QColor(Qt::blue)
                                                                    : QColor(Qt::white);
    const QRectF below(field.left(), field.bottom() + ScaleGap, field.width(), ScaleWidth);
    const QRectF beside(field.left() - ScaleGap - ScaleWidth, field.top(), ScaleWidth,
                        field.height());
    QLinearGradient across(below.topLeft(), below.topRight());
    QLinearGradient upward(beside.bottomLeft(), beside.topLeft());
    for (QLinearGradient* gradient : {&across, &upward}) {
        gradient->setColorAt(0, Qt::black);
        gradient->setColorAt(1, light);
    }
    painter.setPen(QPen(Faded(palette().color(QPalette::Text), 0.35), 1));
    painter.setBrush(across);
    painter.drawRect(below);
    painter.setBrush(upward);
    painter.drawRect(beside);
}

void CurveEditor::PaintCurve(QPainter& painter, imaging::CurveChannel channel,
                             double opacity) const {
    // Whole levels would show as steps.
    const imaging::MonotoneCubic curve(curves_[channel].Points());
    const QRectF field = Field();
    QPolygonF line;
    for (int input = 0; input <= imaging::HighestCurveLevel; ++input) {
        line.append(
            {field.left() + field.width() * input / imaging::HighestCurveLevel,
             field.bottom() - field.height() * curve.At(input) / imaging::HighestCurveLevel});
    }
    painter.setPen(QPen(Faded(ColourOf(channel, palette()), opacity), channel == channel_ ? 2 : 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(line);
}

void CurveEditor::PaintPoints(QPainter& painter) const {
    const Points& points = ChannelPoints();
    for (size_t i = 0; i < points.size(); ++i) {
        const QPointF centre = ToWidget(points[i]);
        if (static_cast<int>(i) == selected_) {
            painter.setPen(QPen(PointColour, 1.5));
            painter.setBrush(palette().base());
            painter.drawEllipse(centre, PointRadius + 3, PointRadius + 3);
        }
        painter.setPen(QPen(palette().color(QPalette::Base), 1));
        painter.setBrush(PointColour);
        painter.drawEllipse(centre, PointRadius, PointRadius);
    }
}

void CurveEditor::PaintCrossHair(QPainter& painter) const {
    if (!pointer_) {
        return;
    }
    const QRectF field = Field();
    const QPointF place = ToWidget(FromWidget(*pointer_));
    painter.setPen(QPen(Faded(palette().color(QPalette::Text), 0.45), 1));
    painter.drawLine(QPointF(place.x(), field.top()), QPointF(place.x(), field.bottom()));
    painter.drawLine(QPointF(field.left(), place.y()), QPointF(field.right(), place.y()));
}

/// The dragged or selected point's values, else those under the pointer.
void CurveEditor::PaintValues(QPainter& painter) const {
    std::optional<imaging::CurvePoint> shown;
    if (selected_ >= 0 && (drag_ || !pointer_)) {
        shown = ChannelPoints()[static_cast<size_t>(selected_)];
    } else if (pointer_) {
        shown = FromWidget(*pointer_);
    }
    const QString blank = u"–"_s;
    const QString input = shown ? QString::number(shown->input) : blank;
    const QString output = shown ? QString::number(shown->output) : blank;
    const QRectF field = Field();
    const double top = field.bottom() + ScaleGap + ScaleWidth + 4;
    const QRectF line(field.left(), top, field.width(), height() - top);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, u"Eingabe: "_s + input);
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, u"Ausgabe: "_s + output);
}

}  // namespace kadrona::dialogs
