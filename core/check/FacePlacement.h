#pragma once

#include <QRect>
#include <QSize>

#include "core/check/TemplateTable.h"
#include "imaging/face/Face.h"

namespace kadrona::core {

/// Where a template belongs on a photo.
struct FacePlacement {
    QRect rectangle;  ///< photo pixels, inside the photo
    /// The photo ends too close to the head: the template had to leave its place.
    bool photoTooTight = false;
    /// The photo ends so close to the head that it has another size or place than the middle of the
    /// bands, though every band is kept.
    bool offMiddle = false;
};

/// Where the eyes of a portrait lie above its lower edge, as parts of its height: ISO/IEC 39794-5,
/// D.1 (second hand). It is what is aimed at and shown where a document publishes nothing of it.
inline constexpr double LowestEyes = 0.5;
inline constexpr double HighestEyes = 0.7;

/// Which of several faces counts, German; empty where there are not several.
QString SeveralFacesText(int faceCount);

/// What whoever places a template on a face has to know: that there are several, that the photo is
/// tight or too tight. German sentences; often empty.
QString PlacementRemark(const imaging::FaceSearch& search, const FacePlacement& placement);

/// The top of the head that counts for a document.
QPointF CrownFor(const imaging::Face& face, const TemplateRow& row);

/// From the chin to the top of the head that counts, along the face's axis, which stands square on
/// the eye line; photo pixels. A tilted head takes fewer rows.
double HeadPixels(const imaging::Face& face, QPointF crown);

/// Middle of the face across the photo: between the pupils and the chin, photo pixels.
double FaceAxis(const imaging::Face& face);

/// The template so that the head from chin to crown has the middle of its band and the chin stands
/// on the template's chin line, the face's axis in the middle of its band, and the eyes inside
/// theirs, or where none is published inside the one for all portraits. Where only an upper limit
/// of the head is published, nine tenths of it; where nothing is, seven tenths of the photo's
/// height; larger where that brings the pupils as far apart as is published. The rectangle has the
/// shape of `canvas` (the size of the template's drawing) and is never stretched. A photo without
/// room enough moves the template inside the published bands, up and down also where a document
/// leaves that to the photographer, then makes the head larger inside its band, by no more than it
/// must; where nothing keeps them all, the template is pushed back inside.
FacePlacement PlaceOnFace(const imaging::Face& face, const TemplateRow& row, QSize canvas,
                          QSize photo);

}  // namespace kadrona::core
