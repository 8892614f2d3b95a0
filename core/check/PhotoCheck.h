#pragma once

#include <QRect>
#include <QString>
#include <optional>
#include <vector>

#include "core/check/TemplateTable.h"
#include "imaging/face/Face.h"
#include "imaging/face/PortraitMeasures.h"
#include "imaging/pixels/Pixels.h"

namespace kadrona::core {

enum class CheckState {
    Met,
    Missed,
    Guidance,  ///< nobody publishes a rule: value and band are shown, nothing is judged
};

/// One line of the check.
struct CheckLine {
    QString name;   ///< for programs, e.g. "headHeight"
    QString label;  ///< for people, German
    CheckState state = CheckState::Guidance;
    std::optional<double> value;
    std::optional<double> minimum;
    std::optional<double> maximum;
    QString unit;
    QString source;
    QString note;  ///< what the figures cannot say, German; often empty
    int decimals = 1;
};

/// What was done to a photo beside cutting, scaling and turning it.
struct PhotoEdits {
    bool tone = false;     ///< white point, curves, grey
    bool colours = false;  ///< hue, balance
    bool retouched = false;
    bool Any() const { return tone || colours || retouched; }
};

/// What is checked.
struct CheckedPhoto {
    std::optional<imaging::Face> face;
    imaging::PortraitMeasures measures;  ///< of that face; measured once for each face
    QRect rectangle;                     ///< the template's place, photo pixels
    /// Printed at the template's size; empty where the template has no figures.
    std::optional<TemplateRow> figures;
    TenthsOfMillimetre printedWidth;  ///< of the template's drawing
    PhotoEdits edits;
    bool whiteCorners = false;  ///< the cut has corners that a rotation uncovered
};

/// All lines of the check, the template's own figures first. A pure function of a few dozen
/// figures, quick enough for every frame of a drag.
std::vector<CheckLine> CheckPhoto(const CheckedPhoto& photo);

/// True where a corner of the cut is pure white over a triangle, as a rotation leaves it.
bool HasWhiteCorners(const imaging::Pixels& photo, const QRect& rectangle);

/// "erfüllt", "nicht erfüllt" or "nur Richtwert".
QString StateText(CheckState state);

/// "29,4 mm statt 32 bis 36 mm", or the value alone where there is no band; a note where there is
/// no value.
QString FigureText(const CheckLine& line);
/// "32 bis 36 mm", "mindestens 90 px"; empty where there is no band.
QString BandText(const CheckLine& line);
/// "29,4 mm"; empty where nothing was measured.
QString ValueText(const CheckLine& line);

}  // namespace kadrona::core
