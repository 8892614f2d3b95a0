#pragma once

#include <QColor>

#include "tests/imaging/ReaderFixture.h"

namespace kadrona::imaging::test {

struct Dng {
    QSize size{64, 48};
    /// What the light of the scene leaves of red and blue.
    double red = 1;
    double blue = 1;
    quint16 orientation = 1;
    int missingRows = 0;
    /// From the top on, with half the light.
    int dimRows = 0;
    const char* pattern = "\0\1\1\2";
};

/// A camera's file of one colour, built as Adobe's description of DNG 1.4 says: a mosaic of 16 bits
/// a pixel from a camera that sees the primaries of sRGB.
QByteArray RawFile(const Dng& dng, QColor colour);

}  // namespace kadrona::imaging::test
