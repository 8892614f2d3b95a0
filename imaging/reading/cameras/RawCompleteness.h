#pragma once

#include <QByteArrayView>

namespace kadrona::imaging {

/// False where a DNG file lacks a strip or a tile of its sensor's data, ends within one, or a
/// compressed one does not begin as its coding does: LibRaw makes black of them without a word.
/// Also where a lossy one is larger than its place or has several scans. True for files of other
/// kinds, whose data LibRaw checks. The tags are those of DNG 1.4 and TIFF 6.0.
bool HasWholeRawData(QByteArrayView file);

}  // namespace kadrona::imaging
