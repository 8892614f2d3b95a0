#pragma once

#include <QByteArray>
#include <QSize>
#include <vector>

#include "imaging/metadata/WrittenMetadata.h"
#include "imaging/pixels/Resolution.h"
#include "imaging/writing/RowSource.h"

/// Pieces of one baseline JPEG file, each encoded by itself, so that they can be encoded at the
/// same time:
///
///     header                      SOI, JFIF, EXIF, ICC profile, IPTC, tables, frame, scan
///     MCU row 0   RST0            an MCU row is 8 rows of pixels and one restart interval:
///     MCU row 1   RST1            nothing in it depends on its neighbours
///     ...
///     last MCU row   EOI
namespace kadrona::imaging {

/// Rows of pixels in an MCU row.
constexpr int McuRowHeight = 8;

/// Largest width and height that libjpeg takes.
constexpr int JpegMaximumLength = 65500;

/// Largest density that JFIF can hold.
constexpr int JpegMaximumDotsPerInch = 65535;

/// Everything before the entropy-coded data. `size` and `resolution` are within the limits above.
/// Throws platform::Error.
QByteArray EncodeJpegHeader(QSize size, DotsPerInch resolution, const WrittenMetadata& metadata);

/// The entropy-coded data of the MCU rows `first` to `first + count - 1`, without markers. `rows`
/// have red first. Throws platform::Error.
std::vector<QByteArray> EncodeMcuRows(const RowSource& rows, int first, int count);

}  // namespace kadrona::imaging
