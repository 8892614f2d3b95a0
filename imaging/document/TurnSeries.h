#pragma once

#include <QSize>
#include <QTransform>
#include <utility>
#include <vector>

#include "imaging/pixels/Pixels.h"

namespace kadrona::imaging {

/// Turns of a photo that follow each other. Each result is made of the photo as it was before the
/// first of them, so that many small turns soften it no more than one.
class TurnSeries {
 public:
    /// `photo` turned on. Where it is itself a result of this series, or the photo that the series
    /// began with, the angles add up; else a new series begins. White where nothing covers. Throws
    /// platform::Error where memory is short.
    Pixels Turned(const Pixels& photo, double degreesCounterClockwise);

    /// Lets go of the first photo.
    void Forget();

 private:
    Pixels first_;
    /// By which angle each of the results came of the first photo, told apart by its pixels.
    std::vector<std::pair<qint64, double>> results_;
};

/// Where what a photo shows lies after a turn around its middle, which changes its size; both in
/// pixels from its upper left corner.
QTransform TurnAroundMiddle(QSize before, QSize after, double degreesCounterClockwise);

}  // namespace kadrona::imaging
