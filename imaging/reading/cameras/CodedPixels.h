#pragma once

#include <QByteArrayView>

namespace kadrona::imaging {

/// What a decoder makes of coded bytes, told without decoding them.
struct CodedPictures {
    /// Pixels of the largest size that any of its headers says.
    qint64 pixels = 0;
    /// Shown or not.
    qint64 pictures = 0;
    /// Pieces that the bytes consist of, of whatever kind and length.
    qint64 units = 0;
    /// More than 8 bits a channel.
    bool isDeep = false;
    /// Samples of both chroma channels together for every two pixels: 1 with 4:2:0 and grey, 2, 4.
    int chroma = 1;
};

/// HEVC as HEIF files keep it (ISO/IEC 14496-15, 8.3.3.1): `configuration` is the content of the
/// box "hvcC", `data` the item's bytes. Throws platform::OutOfBytes where headers end early.
CodedPictures CodedHevcPictures(QByteArrayView configuration, QByteArrayView data);

/// AV1 in the same way, with the content of the box "av1C" (AV1 in ISOBMFF, 2.3).
CodedPictures CodedAv1Pictures(QByteArrayView configuration, QByteArrayView data);

}  // namespace kadrona::imaging
