#include "printing/RulerSheet.h"

#include <QPainter>
#include <algorithm>

#include "printing/PrinterLayer.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing {

namespace {

/// Ten to the millimetre: every line of the sheet lies on whole dots.
constexpr int DotsPerInch = 254;
constexpr int DotsPerMillimetre = 10;
constexpr int LongestLine = 100;
constexpr int ShortestLine = 30;
/// Free at both ends of a line.
constexpr int Border = 10;

int LineFor(double paperMillimetres) {
    const int room = static_cast<int>(paperMillimetres) - 2 * Border;
    return std::min(room / 10 * 10, LongestLine);
}

/// A line of `length` millimetres to both sides of the origin, with marks upwards: long ones at the
/// tens, middle ones at the fives. The outermost stand at its very ends.
void DrawRuler(QPainter& painter, int length) {
    const int half = length * DotsPerMillimetre / 2;
    painter.drawLine(-half, 0, half, 0);
    for (int mark = 0; mark <= length; ++mark) {
        const int height = mark % 10 == 0 ? 40 : mark % 5 == 0 ? 28 : 16;
        const int x = mark * DotsPerMillimetre - half;
        painter.drawLine(x, 0, x, -height);
    }
}

void DrawCorners(QPainter& painter, const QRect& paper) {
    constexpr int Length = 8 * DotsPerMillimetre;
    for (const QPoint corner :
         {paper.topLeft(), paper.topRight(), paper.bottomLeft(), paper.bottomRight()}) {
        const QPoint inwards(corner.x() < paper.center().x() ? 1 : -1,
                             corner.y() < paper.center().y() ? 1 : -1);
        painter.drawLine(corner, corner + QPoint(inwards.x() * Length, 0));
        painter.drawLine(corner, corner + QPoint(0, inwards.y() * Length));
    }
}

/// Below the one line and left of the other, where neither has marks. Their crossing is what is
/// measured from the paper's edges.
void DrawText(QPainter& painter, const RulerLines& lines) {
    QFont font;
    font.setPixelSize(25);
    painter.setFont(font);
    const int acrossHalf = static_cast<int>(lines.across) * DotsPerMillimetre / 2;
    const int alongHalf = static_cast<int>(lines.along) * DotsPerMillimetre / 2;
    const auto drawUpTo = [&](int right, int baseline, const QString& text) {
        painter.drawText(right - painter.fontMetrics().horizontalAdvance(text), baseline, text);
    };
    drawUpTo(acrossHalf, 3 * DotsPerMillimetre, u"A %1 mm"_s.arg(lines.across));
    drawUpTo(-DotsPerMillimetre, 2 * DotsPerMillimetre - alongHalf, u"B %1 mm"_s.arg(lines.along));
    drawUpTo(-DotsPerMillimetre, 3 * DotsPerMillimetre, u"Kreuz"_s);
    drawUpTo(-DotsPerMillimetre, -23 * DotsPerMillimetre, u"35 × 45 mm"_s);
}

}  // namespace

RulerLines RulerLinesFor(const PaperGeometry& paper) {
    return {static_cast<double>(LineFor(paper.paper.width())),
            static_cast<double>(LineFor(paper.paper.height()))};
}

PrintImage RulerSheet(const PaperGeometry& paper, const Calibration& calibration) {
    const RulerLines lines = RulerLinesFor(paper);
    if (!paper.IsKnown() || lines.across < ShortestLine || lines.along < ShortestLine) {
        throw PrinterError(
            u"Für das eingestellte Papier gibt es kein Kalibrierblatt: Seine Größe ist nicht bekannt oder zu klein."_s);
    }
    QImage image((paper.paper.size() * DotsPerMillimetre).toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::black, 2, Qt::SolidLine, Qt::FlatCap));
    DrawCorners(painter, image.rect());
    painter.translate(QPoint(image.width() / 2, image.height() / 2));
    DrawText(painter, lines);
    painter.drawRect(QRect(-175, -225, 350, 450));
    DrawRuler(painter, static_cast<int>(lines.across));
    painter.rotate(90);
    DrawRuler(painter, static_cast<int>(lines.along));
    painter.end();
    return {.tile = image,
            .dotsPerInch = DotsPerInch,
            .title = u"Kalibrierblatt"_s,
            .orientation = Orientation::Upright,
            .calibration = calibration,
            .copies = 1};
}

}  // namespace kadrona::printing
