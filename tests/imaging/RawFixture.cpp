#include "tests/imaging/RawFixture.h"

#include <cmath>

namespace kadrona::imaging::test {

using namespace Qt::StringLiterals;

namespace {

/// sRGB's curve backwards (IEC 61966-2-1).
double Linear(int value) {
    const double part = value / 255.0;
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

TiffEntry Rationals(quint16 tag, quint16 type, std::initializer_list<double> values) {
    QByteArray bytes;
    for (const double value : values) {
        bytes += Packed<qint32>(std::lround(value * 10000), 10000);
    }
    return {tag, type, bytes};
}

}  // namespace

QByteArray RawFile(const Dng& dng, QColor colour) {
    QByteArray mosaic;
    const std::array<double, 3> seen{Linear(colour.red()) * dng.red, Linear(colour.green()),
                                     Linear(colour.blue()) * dng.blue};
    for (int y = 0; y < dng.size.height() - dng.missingRows; ++y) {
        for (int x = 0; x < dng.size.width(); ++x) {
            const auto filter = size_t{static_cast<uchar>(dng.pattern[y % 2 * 2 + x % 2])};
            const double light = y < dng.dimRows ? 0.5 : 1;
            mosaic += Packed<quint16>(std::lround(seen.at(filter) * light * 65535));
        }
    }
    constexpr quint16 Bytes = 1;
    constexpr quint16 Text = 2;
    constexpr quint16 Shorts = 3;
    constexpr quint16 PositiveRationals = 5;
    constexpr quint16 SignedRationals = 10;
    return Tiff(
        {Short(0x0100, quint16(dng.size.width())),
         Short(0x0101, quint16(dng.size.height())),
         Short(0x0102, 16),
         Short(0x0103, 1),
         Short(0x0106, 32803),
         {0x010f, Text, "Test\0"_ba},
         {0x0110, Text, "Kamera\0"_ba},
         Short(0x0112, dng.orientation),
         Short(0x0115, 1),
         {0x828d, Shorts, Packed<quint16>(2, 2)},
         {0x828e, Bytes, QByteArray(dng.pattern, 4)},
         {0xc612, Bytes, QByteArray("\1\4\0\0", 4)},
         {0xc614, Text, "Test Kamera\0"_ba},
         Rationals(0xc621, SignedRationals,
                   {3.2406, -1.5372, -0.4986, -0.9689, 1.8758, 0.0415, 0.0557, -0.2040, 1.0570}),
         Rationals(0xc628, PositiveRationals, {dng.red, 1, dng.blue}),
         Short(0xc65a, 21)},
        mosaic);
}

}  // namespace kadrona::imaging::test
