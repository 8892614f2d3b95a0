#pragma once

#include <QByteArray>
#include <QString>

#include "imaging/metadata/Iptc.h"

namespace kadrona::imaging {

/// A JPEG file's bytes with `items` in the place of the IPTC items that it had, if any. Everything
/// else stays byte for byte: other metadata, other resources in the block of the IPTC items, and
/// all from the first scan on. What makes no sense in that block is left out. Throws
/// platform::Error with the bare reason where the bytes are no JPEG file up to the first scan.
QByteArray WithIptc(QByteArrayView jpeg, const IptcItems& items);

/// The same with a file of up to 1 GiB, of which only what comes before the first scan (at most
/// 64 MiB) is in memory, through a temporary file that is renamed when complete. Throws
/// platform::FileError; the file is then as it was.
void RewriteIptc(const QString& path, const IptcItems& items);

}  // namespace kadrona::imaging
