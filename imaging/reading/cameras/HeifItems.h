#pragma once

#include <QByteArrayView>

#include "imaging/reading/ReadTask.h"

namespace kadrona::imaging {

/// Throws a ReadError where the items of a HEIF file (ISO/IEC 23008-12) would keep its library busy
/// or let it run out of its stack: pictures that are made of themselves or of far more and larger
/// ones than the file's picture is large, bytes that count many times. `file` is the whole file.
void RequireSoundItems(QByteArrayView file, const ReadTask& task);

}  // namespace kadrona::imaging
