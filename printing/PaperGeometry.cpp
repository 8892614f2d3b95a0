#include "printing/PaperGeometry.h"

#include <QLocale>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kadrona::printing {

namespace {

/// Less than this is no loss: nobody sees it, and drivers round their papers to whole points.
constexpr double LeastLoss = 0.1;

double Sum(const QMarginsF& lost) {
    return lost.left() + lost.top() + lost.right() + lost.bottom();
}

QString Number(double millimetres) {
    return QLocale(QLocale::German).toString(millimetres, 'f', 1);
}

QString SizeText(QSizeF millimetres) {
    return u"%1 × %2 mm"_s.arg(Number(millimetres.width()), Number(millimetres.height()));
}

/// "links 3,2 mm und rechts 3,2 mm"
QString SidesText(const QMarginsF& lost) {
    QStringList sides;
    for (const auto& [side, millimetres] : {std::pair{u"links"_s, lost.left()},
                                            {u"rechts"_s, lost.right()},
                                            {u"oben"_s, lost.top()},
                                            {u"unten"_s, lost.bottom()}}) {
        if (millimetres > 0) {
            sides.append(u"%1 %2\u00a0mm"_s.arg(side, Number(millimetres)));
        }
    }
    const QString last = sides.isEmpty() ? QString() : sides.takeLast();
    return sides.isEmpty() ? last : sides.join(u", "_s) + u" und "_s + last;
}

}  // namespace

PaperGeometry PaperGeometry::Plain(QSizeF page, QMarginsF margins) {
    const QRectF whole({}, page);
    return {{}, page, whole, whole.marginsRemoved(margins), whole};
}

PaperGeometry KnownPaper(const PrintImage& image, const PaperGeometry& paper) {
    return paper.IsKnown() ? paper : PaperGeometry::Plain(image.Millimetres());
}

bool IsTurned(const PrintImage& image, const PrinterPaper& paper) {
    if (!paper.geometry.IsKnown()) {
        return false;
    }
    const Orientation wanted = image.orientation.value_or(paper.orientation);
    if (wanted != Orientation::Automatic) {
        return wanted == Orientation::Turned;
    }
    return Sum(LostOf(image, paper.geometry, true)) < Sum(LostOf(image, paper.geometry, false));
}

QTransform SheetToPaper(const PrintImage& image, const PaperGeometry& paper, bool turned) {
    const QTransform turn = turned ? QTransform(0, -1, 1, 0, 0, 0) : QTransform();
    const Calibration& calibration = image.calibration;
    const QPointF middle = paper.paper.center() + calibration.offset;
    return turn * QTransform::fromScale(calibration.across, calibration.along) *
           QTransform::fromTranslate(middle.x(), middle.y());
}

QTransform PaperToPage(const PaperGeometry& paper) {
    return QTransform::fromTranslate(-paper.spread.left(), -paper.spread.top()) *
           QTransform::fromScale(paper.page.width() / paper.spread.width(),
                                 paper.page.height() / paper.spread.height());
}

QTransform Uncalibrated(const PrintImage& image, const PaperGeometry& paper, bool turned) {
    PrintImage uncalibrated = image;
    uncalibrated.calibration = {};
    return SheetToPaper(uncalibrated, paper, turned);
}

QRectF KeptOf(const PrintImage& image, const PaperGeometry& paper, bool turned) {
    // The driver cuts off what it is told to print beyond its reach, the printer's error comes
    // after that.
    return Uncalibrated(image, paper, turned).inverted().mapRect(paper.paper) &
           SheetToPaper(image, paper, turned).inverted().mapRect(paper.reach);
}

QMarginsF LostAt(const QRectF& photos, const QRectF& kept) {
    const auto lost = [](double millimetres) { return millimetres < LeastLoss ? 0 : millimetres; };
    return {lost(kept.left() - photos.left()), lost(kept.top() - photos.top()),
            lost(photos.right() - kept.right()), lost(photos.bottom() - kept.bottom())};
}

QMarginsF LostOf(const PrintImage& image, const PaperGeometry& paper, bool turned) {
    return paper.IsKnown() ? LostAt(image.PhotoMillimetres(), KeptOf(image, paper, turned))
                           : QMarginsF();
}

bool TurningHelps(const PrintImage& image, const PrinterPaper& paper) {
    const bool turned = IsTurned(image, paper);
    return Sum(LostOf(image, paper.geometry, turned)) > 0 &&
           Sum(LostOf(image, paper.geometry, !turned)) == 0;
}

QString LossText(const PrintImage& image, const PrinterPaper& paper) {
    return SidesText(LostOf(image, paper.geometry, IsTurned(image, paper)));
}

QString PaperText(const PrintImage& image, const PrinterPaper& paper) {
    if (!paper.geometry.IsKnown()) {
        return {};
    }
    const QSizeF real = paper.geometry.paper.size();
    const QString size = SizeText(IsTurned(image, paper) ? real.transposed() : real);
    return paper.geometry.name.isEmpty() ? size : paper.geometry.name + u", "_s + size;
}

QStringList RemarksOf(const PrintImage& image, const PrinterPaper& paper) {
    return image.calibration == Calibration() ? paper.remarks + paper.uncalibratedRemarks
                                              : paper.remarks;
}

QString PaperWarning(const PrintImage& image, const PrinterPaper& paper) {
    QStringList parts = RemarksOf(image, paper);
    const QString lost = LossText(image, paper);
    if (!lost.isEmpty()) {
        const bool turned = IsTurned(image, paper);
        const QSizeF real = paper.geometry.paper.size();
        const QSizeF reached = paper.geometry.paper.intersected(paper.geometry.reach).size();
        parts.append(
            u"Die Fotos passen nicht auf das eingestellte Papier: %1 gehen verloren.\n\n"
            u"Fotos: %2\nPapier: %3, davon bedruckbar %4"_s.arg(
                lost, SizeText(image.PhotoMillimetres().size()),
                SizeText(turned ? real.transposed() : real),
                SizeText(turned ? reached.transposed() : reached)));
    }
    return parts.join(u"\n\n"_s);
}

}  // namespace kadrona::printing
