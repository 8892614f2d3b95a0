#include "core/check/FacePlacement.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

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

/// Chin above the lower edge in tenths of a millimetre for a head of that size: the drawing's chin
/// line, or below the published gap over the crown, moved as far as the eyes need it to lie inside
/// their band.
double ChinAbove(const imaging::Face& face, const TemplateRow& row, double head,
                 double unitsPerPixel) {
    constexpr double Inside = 2;
    constexpr double FreeHeightBelowChin = 0.6;
    double chin = ChinAboveLowerEdge(row);
    if (row.top.IsComplete() && !row.chin.IsComplete()) {
        chin = row.height.value - row.top.Middle() - head;
    } else if (!row.head.from && !row.head.to && !row.chin.IsComplete()) {
        chin = FreeHeightBelowChin * (row.height.value - head);
    }
    if (row.eyes.IsComplete()) {
        const double eyesOverChin = (face.chin.position.y() - face.EyeMiddle().y()) * unitsPerPixel;
        chin = std::max(chin, row.eyes.from->value + Inside - eyesOverChin);
        chin = std::min(chin, row.eyes.to->value - Inside - eyesOverChin);
    }
    return chin;
}

QRect RectangleFor(const imaging::Face& face, const TemplateRow& row, QSize canvas, double head) {
    const double pixels = face.chin.position.y() - CrownFor(face, row).y();
    const double unitsPerPixel = head / std::max(pixels, 1.0);
    const double axis = row.axis.IsComplete() ? row.axis.Middle() : row.width.value / 2.0;
    const double fromTop = row.height.value - ChinAbove(face, row, head, unitsPerPixel);
    const QRect wanted(
        static_cast<int>(std::lround(FaceAxis(face) - axis / unitsPerPixel)),
        static_cast<int>(std::lround(face.chin.position.y() - fromTop / unitsPerPixel)),
        std::max(1, static_cast<int>(std::lround(row.width.value / unitsPerPixel))), 1);
    return RestoredLayerRectangle(wanted, wanted.size(), canvas);
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
    if (placement.photoTooTight) {
        remarks << u"Das Foto endet zu nah am Kopf; die Schablone passt nicht an ihren Platz."_s;
    }
    remarks.removeAll({});
    return remarks.join(u' ');
}

QPointF CrownFor(const imaging::Face& face, const TemplateRow& row) {
    return (row.crown == Crown::Skull ? face.skull : face.crown).position;
}

double FaceAxis(const imaging::Face& face) {
    return (face.EyeMiddle().x() + face.chin.position.x()) / 2;
}

FacePlacement PlaceOnFace(const imaging::Face& face, const TemplateRow& row, QSize canvas,
                          QSize photo) {
    const QRect whole({0, 0}, photo);
    const HeadSizes heads = HeadsOf(row);
    constexpr int Steps = 8;
    QRect rectangle;
    for (int step = 0; step <= Steps; ++step) {
        const double head = heads.best + (heads.largest - heads.best) * step / Steps;
        rectangle = RectangleFor(face, row, canvas, head);
        if (whole.contains(rectangle)) {
            return {rectangle, false};
        }
    }
    // No size of head leaves the template in its place: the best one, pushed back inside.
    rectangle = RectangleFor(face, row, canvas, heads.best);
    if (rectangle.width() > photo.width() || rectangle.height() > photo.height()) {
        rectangle = LargestInside(rectangle, canvas, photo);
    }
    return {KeptInsidePhoto(rectangle, photo), true};
}

}  // namespace kadrona::core
