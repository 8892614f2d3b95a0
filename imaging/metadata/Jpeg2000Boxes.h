#pragma once

#include <QByteArrayView>
#include <QIODevice>
#include <optional>

namespace kadrona::imaging {

/// The content of a box of a JP2 file (ITU-T T.800, Annex I).
struct Jpeg2000Box {
    qint64 position = 0;
    qint64 length = 0;
};

/// The first box of that type (four letters) among those that lie in no other, whose content begins
/// with `start`. None where there is none or the boxes make no sense. Moves the device.
std::optional<Jpeg2000Box> FindJpeg2000Box(QIODevice& device, QByteArrayView type,
                                           QByteArrayView start = {});

}  // namespace kadrona::imaging
