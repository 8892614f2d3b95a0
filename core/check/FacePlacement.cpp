#include "core/check/FacePlacement.h"

#include <QStringList>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "core/templates/LayerPosition.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// Heads that are aimed at, in tenths of a millimetre: the best one, and the largest that still
/// serves.
struct HeadSizes {
    double best = 0;
    double largest = 0;
};

/// Nine tenths of a limit are more than the "about two thirds" of the height that Austria names
/// beside its limit: with these, 30 mm, the pupils of most adults, whose distance is a quarter of
/// the head, would not have the 8 mm that it demands.
HeadSizes HeadsOf(const TemplateRow& row) {
    constexpr double PartOfLimit = 0.9;
    constexpr double PartOfHeight = 0.7;
    constexpr double LargestPartOfHeight = 0.78;
    if (row.head.IsComplete()) {
        return {row.head.Middle(), static_cast<double>(row.head.to->value)};
    }
    if (row.head.to) {
        return {PartOfLimit * row.head.to->value, static_cast<double>(row.head.to->value)};
    }
    return {PartOfHeight * row.height.value, LargestPartOfHeight * row.height.value};
}

/// The same for a face: where its pupils would be too near to each other, larger, if that helps.
HeadSizes HeadsOf(const imaging::Face& face, const TemplateRow& row) {
    constexpr double Inside = 1;  // since pixels round
    HeadSizes heads = HeadsOf(row);
    if (row.eyeDistance) {
        const double needed = (row.eyeDistance->value + Inside) *
                              HeadPixels(face, CrownFor(face, row)) /
                              std::max(face.EyeDistance(), 1.0);
        if (needed <= heads.largest) {
            heads.best = std::max(heads.best, needed);
        }
    }
    return heads;
}

/// Lengths in tenths of a millimetre; nothing where it ends before it begins.
struct Range {
    double from = -std::numeric_limits<double>::infinity();
    double to = std::numeric_limits<double>::infinity();

    bool IsEmpty() const { return from > to; }

    void Narrow(double least, double most) {
        from = std::max(from, least);
        to = std::min(to, most);
    }

    /// By what is published, taken from a length that grows with the chin's; a tenth inside, since
    /// pixels round.
    void Narrow(const Band& band, double lengthAtChin) {
        constexpr double Inside = 1;
        if (band.from) {
            from = std::max(from, band.from->value + Inside - lengthAtChin);
        }
        if (band.to) {
            to = std::min(to, band.to->value - Inside - lengthAtChin);
        }
    }

    /// Precondition: not empty.
    double Nearest(double wanted) const { return std::clamp(wanted, from, to); }
};

/// A face under a template at one size of its head. All lengths are tenths of a millimetre.
class SizedFace {
 public:
    SizedFace(const imaging::Face& face, const TemplateRow& row, double head)
        : face_(face),
          row_(row),
          units_(head / std::max(HeadPixels(face, CrownFor(face, row)), 1.0)),
          rows_((face.chin.position.y() - CrownFor(face, row).y()) * units_) {}

    /// Chin above the lower edge: the drawing's chin line, or below the published gap over the
    /// crown, moved as far as the eyes need it to lie inside their band.
    double Chin() const {
        constexpr double FreeHeightBelowChin = 0.6;
        double chin = ChinAboveLowerEdge(row_);
        if (row_.top.IsComplete() && !row_.chin.IsComplete()) {
            chin = row_.height.value - row_.top.Middle() - rows_;
        } else if (!row_.head.from && !row_.head.to && !row_.chin.IsComplete()) {
            chin = FreeHeightBelowChin * (row_.height.value - rows_);
        }
        Range chins;
        if (row_.eyes.IsComplete()) {
            chins = ChinsByEyes();
        } else if (IsFreeUpAndDown()) {
            chins = ChinsByEyes();
            const Range whole = ChinsOfWholeHead();
            chins.Narrow(whole.from, whole.to);
        }
        return chins.IsEmpty() ? chin : chins.Nearest(chin);
    }

    /// Middle of the face from the left edge.
    double Axis() const {
        return row_.axis.IsComplete() ? row_.axis.Middle() : row_.width.value / 2.0;
    }

    /// Where the chin keeps every published band.
    Range Chins() const {
        Range chins;
        chins.Narrow(row_.chin, 0);
        chins.Narrow(row_.eyes, EyesOverChin());
        const double fromTop = row_.height.value - rows_;
        if (row_.top.from) {
            chins.Narrow(-Infinite, fromTop - row_.top.from->value - 1);
        }
        if (row_.top.to) {
            chins.Narrow(fromTop - row_.top.to->value + 1, Infinite);
        }
        if (IsFreeUpAndDown() && !chins.IsEmpty()) {
            const Range free = ChinsOfWholeHead();
            const double usual = chins.Nearest(Chin());
            chins.Narrow(std::min(free.from, usual), std::max(free.to, usual));
        }
        return chins;
    }

    Range Axes() const {
        Range axes;
        axes.Narrow(row_.axis, 0);
        if (!row_.axis.IsComplete()) {
            axes.Narrow(Axis(), Axis());
        }
        return axes;
    }

    /// Where the chin leaves the template inside the photo.
    Range ChinsInside(QSize photo) const {
        const double chin = face_.chin.position.y();
        return {row_.height.value - chin * units_, (photo.height() - chin) * units_};
    }

    Range AxesInside(QSize photo) const {
        const double axis = FaceAxis(face_);
        return {row_.width.value - (photo.width() - axis) * units_, axis * units_};
    }

    QRect Rectangle(double chin, double axis, QSize canvas) const {
        const double fromTop = row_.height.value - chin;
        const QRect wanted(
            static_cast<int>(std::lround(FaceAxis(face_) - axis / units_)),
            static_cast<int>(std::lround(face_.chin.position.y() - fromTop / units_)),
            std::max(1, static_cast<int>(std::lround(row_.width.value / units_))), 1);
        return RestoredLayerRectangle(wanted, wanted.size(), canvas);
    }

 private:
    static constexpr double Infinite = std::numeric_limits<double>::infinity();

    /// Nobody says where the head stands; of the eyes something may be said.
    bool IsFreeUpAndDown() const { return !row_.chin.IsComplete() && !row_.top.IsComplete(); }

    /// Where the chin has the eyes inside their band, or the one for all portraits.
    Range ChinsByEyes() const {
        constexpr double Inside = 2;
        const bool isPublished = row_.eyes.IsComplete();
        const double from = isPublished ? row_.eyes.from->value : LowestEyes * row_.height.value;
        const double to = isPublished ? row_.eyes.to->value : HighestEyes * row_.height.value;
        return {from + Inside - EyesOverChin(), to - Inside - EyesOverChin()};
    }

    /// Where the chin leaves the whole head in the picture.
    Range ChinsOfWholeHead() const {
        constexpr double Gap = 5;
        return {Gap, row_.height.value - rows_ - Gap};
    }

    double EyesOverChin() const {
        return (face_.chin.position.y() - face_.EyeMiddle().y()) * units_;
    }

    const imaging::Face& face_;
    const TemplateRow& row_;
    double units_;  ///< tenths of a millimetre for a pixel
    double rows_;   ///< what the head takes of the picture's height
};

/// What is too little off the middle to be told of, in tenths of a millimetre.
constexpr double Unseen = 2;

/// The place that keeps every published band inside the photo, as near as can be to the usual one.
std::optional<FacePlacement> PlaceInBands(const SizedFace& face, QSize canvas, QSize photo) {
    Range chins = face.Chins();
    Range axes = face.Axes();
    if (chins.IsEmpty() || axes.IsEmpty()) {
        return std::nullopt;
    }
    const double usualChin = chins.Nearest(face.Chin());
    const double usualAxis = axes.Nearest(face.Axis());
    const Range chinsInside = face.ChinsInside(photo);
    const Range axesInside = face.AxesInside(photo);
    chins.Narrow(chinsInside.from, chinsInside.to);
    axes.Narrow(axesInside.from, axesInside.to);
    if (chins.IsEmpty() || axes.IsEmpty()) {
        return std::nullopt;
    }
    const double chin = chins.Nearest(usualChin);
    const double axis = axes.Nearest(usualAxis);
    // Its edges were rounded by themselves.
    const QRect kept = KeptInsidePhoto(face.Rectangle(chin, axis, canvas), photo);
    if (!QRect({0, 0}, photo).contains(kept)) {
        return std::nullopt;
    }
    const bool moved = std::max(std::abs(chin - usualChin), std::abs(axis - usualAxis)) > Unseen;
    return FacePlacement{kept, false, moved};
}

/// The largest rectangle of the shape that the photo holds, around the middle of another one.
QRect LargestInside(const QRect& around, QSize canvas, QSize photo) {
    QSize size = canvas.scaled(photo, Qt::KeepAspectRatio);
    QRect rectangle =
        RestoredLayerRectangle(QRect(0, 0, std::max(1, size.width()), 1), size, canvas);
    while (rectangle.height() > photo.height() && rectangle.width() > 1) {
        rectangle = RestoredLayerRectangle(QRect(0, 0, rectangle.width() - 1, 1), size, canvas);
    }
    rectangle.moveCenter(around.center());
    return rectangle;
}

}  // namespace

QString SeveralFacesText(int faceCount) {
    return faceCount > 1 ? u"%1 Gesichter; es gilt das größte nahe der Mitte."_s.arg(faceCount)
                         : QString();
}

QString PlacementRemark(const imaging::FaceSearch& search, const FacePlacement& placement) {
    QStringList remarks{SeveralFacesText(search.faceCount)};
    if (placement.offMiddle) {
        remarks << u"Das Foto ist knapp; der Kopf liegt daher nicht in der Mitte der Vorgabe."_s;
    }
    if (placement.photoTooTight) {
        remarks << u"Das Foto endet zu nah am Kopf; die Schablone passt nicht an ihren Platz."_s;
    }
    remarks.removeAll({});
    return remarks.join(u' ');
}

QPointF CrownFor(const imaging::Face& face, const TemplateRow& row) {
    return (row.crown == Crown::Skull ? face.skull : face.crown).position;
}

double HeadPixels(const imaging::Face& face, QPointF crown) {
    const double tilt = qDegreesToRadians(face.tiltDegrees);
    const QPointF down(-std::sin(tilt), std::cos(tilt));
    return QPointF::dotProduct(face.chin.position - crown, down);
}

double FaceAxis(const imaging::Face& face) {
    return (face.EyeMiddle().x() + face.chin.position.x()) / 2;
}

FacePlacement PlaceOnFace(const imaging::Face& face, const TemplateRow& row, QSize canvas,
                          QSize photo) {
    const HeadSizes heads = HeadsOf(face, row);
    // Fine ones: in a tight photo each tenth of a millimetre is room for an error of the face.
    constexpr int Steps = 40;
    bool couldBeMet = false;
    for (int step = 0; step <= Steps; ++step) {
        const double head = heads.best + (heads.largest - heads.best) * step / Steps;
        const SizedFace sized(face, row, head);
        if (auto placement = PlaceInBands(sized, canvas, photo)) {
            placement->offMiddle |= couldBeMet && head - heads.best > Unseen;
            return *placement;
        }
        couldBeMet |= !sized.Chins().IsEmpty();
    }
    const SizedFace best(face, row, heads.best);
    QRect rectangle = best.Rectangle(best.Chin(), best.Axis(), canvas);
    if (!couldBeMet && QRect({0, 0}, photo).contains(rectangle)) {
        return {rectangle};  // the face has other proportions; the photo has room enough
    }
    // No size of head leaves the template in its place: the best one, pushed back inside.
    if (rectangle.width() > photo.width() || rectangle.height() > photo.height()) {
        rectangle = LargestInside(rectangle, canvas, photo);
    }
    return {KeptInsidePhoto(rectangle, photo), true};
}

}  // namespace kadrona::core
