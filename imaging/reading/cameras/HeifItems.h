#pragma once

#include <QByteArrayView>

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// What decoding the picture of a HEIF file takes at once.
struct HeifWork {
    qint64 pixels = 0;
    /// That it is coded with.
    qint64 bytes = 0;
    /// As CodedPictures has them.
    bool isDeep = false;
    int chroma = 1;
    bool hasAv1 = false;
};

/// Throws a ReadError where the items of a HEIF file (ISO/IEC 23008-12) would keep its library busy
/// or let it run out of its stack: pictures that are made of themselves or of far more and larger
/// ones than the file's picture is large, bytes that count many times. `file` is the whole file.
HeifWork RequireSoundItems(QByteArrayView file, const ReadTask& task);

}  // namespace kadrona::imaging
