#pragma once

#include <QRect>
#include <optional>
#include <vector>

#include "core/check/CheckLine.h"
#include "core/check/TemplateTable.h"
#include "imaging/document/PhotoEdits.h"
#include "imaging/face/BackgroundMeasures.h"
#include "imaging/face/Face.h"
#include "imaging/face/PortraitMeasures.h"

namespace kadrona::core {

/// What is checked.
struct CheckedPhoto {
    std::optional<imaging::Face> face;
    bool wasFaceLookedFor = true;            ///< else no face says nothing
    imaging::PortraitMeasures measures;      ///< of that face; measured once for each face
    imaging::BackgroundMeasures background;  ///< of that face in the template's place
    QRect rectangle;                         ///< the template's place, photo pixels
    /// Printed at the template's size; empty where the template has no figures.
    std::optional<TemplateRow> figures;
    TenthsOfMillimetre printedWidth;  ///< of the template's drawing
    imaging::PhotoEdits edits;
    bool whiteCorners = false;  ///< the cut has corners that a rotation uncovered
};

/// All lines of the check, the template's own figures first. A pure function of a few dozen
/// figures, quick enough for every frame of a drag.
std::vector<CheckLine> CheckPhoto(const CheckedPhoto& photo);

}  // namespace kadrona::core
