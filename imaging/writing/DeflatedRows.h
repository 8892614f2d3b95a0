#pragma once

#include <QIODevice>

#include "imaging/writing/RowSource.h"

namespace kadrona::imaging {

/// Writes a picture as one zlib stream (RFC 1950) of PNG rows: each row is led by its filter, Sub,
/// and holds the differences to the pixel on the left.
///
///     header   band 0   band 1   ...   end, checksum
///
/// A band is some rows that are compressed without knowledge of the others. So several are
/// compressed at the same time, and a grid repeats the bands of its first tile. Throws
/// platform::Error.
void WriteDeflatedRows(QIODevice& device, const RowSource& rows);

}  // namespace kadrona::imaging
