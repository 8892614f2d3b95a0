#pragma once

#include <QIODevice>
#include <QSize>
#include <optional>

namespace kadrona::imaging {

/// The samples of the largest block; most pictures are coded in such.
inline constexpr int UsualJpeg2000Block = 64 * 64;

/// The most that any header of a codestream lets be made of a tile.
struct Jpeg2000Work {
    /// Samples of the smallest block or precinct, at least 1: the library keeps hundreds of bytes
    /// for each.
    int smallestBlock = UsualJpeg2000Block;
    /// Packets, those of a channel's precincts in each resolution and layer: the library keeps two
    /// bytes for each and visits them all, however short the file is.
    qint64 packets = 1;
};

/// How a JPEG 2000 codestream, which begins at `codestream`, lets a tile of `tile` samples and so
/// many channels be coded (ITU-T T.800, A.6.1, A.6.2 and B.6). Nothing where the headers make no
/// sense, which includes those that the library would have to look for. Moves the device.
std::optional<Jpeg2000Work> WorkOfJpeg2000Tile(QIODevice& device, qint64 codestream, QSize tile,
                                               int channels);

}  // namespace kadrona::imaging
