#pragma once

#include <QString>
#include <optional>

#include "imaging/writing/SizedJpeg.h"

namespace kadrona::core {

/// What is allowed of a side of a file in pixels; an end that nobody publishes is empty.
struct PixelRange {
    std::optional<int> least;
    std::optional<int> most;

    bool operator==(const PixelRange&) const = default;
};

/// What a portal takes: a JPEG of this size in pixels and in bytes.
struct UploadFigures {
    PixelRange width;
    PixelRange height;
    imaging::ByteRange bytes = {};
    QString evidence =
        {};  ///< letters as the table's head explains them; empty where nothing is known

    /// The same figures, whoever says so.
    bool SameAs(const UploadFigures& other) const {
        return width == other.width && height == other.height && bytes == other.bytes;
    }
};

/// A thousand bytes are a kilobyte, so that an upper end holds for whoever counts 1024 as well.
inline constexpr qint64 BytesPerKilobyte = 1000;

/// No side of a file may be asked for beyond this, in pixels.
inline constexpr int LongestUploadSide = 10'000;
/// Nor more kilobytes.
inline constexpr int MostUploadKilobytes = 100'000;

/// The bytes of a range of kilobytes; 0 is no end.
imaging::ByteRange KilobyteRange(int least, int most);

class Settings;

/// What the settings hold for portals that no template knows.
UploadFigures OwnUploadFigures(const Settings& settings);

/// The side, or the size, whose least is more than its most ("Breite"); empty where there is none.
QString CrossedRange(const UploadFigures& figures);

/// "mindestens 600 x 750 Pixel, 50 bis 10.000 kB"; "keine Vorgaben" where there are none.
QString UploadFiguresText(const UploadFigures& figures);

}  // namespace kadrona::core
