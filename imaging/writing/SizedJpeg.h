#pragma once

#include <QByteArray>
#include <limits>

#include "imaging/metadata/WrittenMetadata.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"
#include "imaging/writing/JpegCoding.h"

namespace kadrona::imaging {

/// How large a file may be, both ends included.
struct ByteRange {
    static constexpr qint64 NoEnd = std::numeric_limits<qint64>::max();

    qint64 least = 0;
    qint64 most = NoEnd;

    bool Contains(qint64 bytes) const { return bytes >= least && bytes <= most; }
    bool operator==(const ByteRange&) const = default;
};

/// A JPEG file and how it was coded.
struct SizedJpeg {
    QByteArray bytes;
    JpegCoding coding;

    /// 1 to 100, as programs count it: the table's percentage the other way round.
    int Quality() const;
};

/// The percentage of the tables for a quality of 1 to 100.
int TablePercentOf(int quality);

/// No file is coded worse than this, however small it should be: faces become blocks.
inline constexpr int LowestQuality = 10;

/// One JPEG of that coding. Throws platform::Error.
SizedJpeg EncodeJpegAs(const Pixels& pixels, DotsPerInch resolution,
                       const WrittenMetadata& metadata, const JpegCoding& coding);

/// The picture as the best baseline JPEG whose size lies in the range, every byte of it picture or
/// metadata: all colours where the tables can then stay at a quality of 90 and more, else every
/// fourth, and then without the profile of sRGB, which EXIF names too; then the finest tables that
/// fit but for half a percent of the bytes. Without an upper end the quality is 95, higher where
/// the lower end demands it. Where no coding lies in the range, it is the one that comes nearest.
/// Throws platform::Error.
SizedJpeg EncodeJpegWithin(const Pixels& pixels, DotsPerInch resolution,
                           const WrittenMetadata& metadata, const ByteRange& range);

}  // namespace kadrona::imaging
