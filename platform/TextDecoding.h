#pragma once

#include <QByteArrayView>
#include <QString>

namespace kadrona::platform {

// Qt's own decoders either stop at the first byte that is not UTF-8 or put U+FFFD in its place, and
// Windows-1252 is among them on Windows alone.

/// Text of a file that people edit: UTF-8 (a byte order mark is dropped); bytes that are not valid
/// UTF-8 are taken one by one as Windows-1252. NUL bytes are dropped. Never fails.
QString DecodeText(QByteArrayView bytes);

/// The character of a byte in Windows-1252. The five codes that it leaves open stand for the
/// control character of the same number.
QChar FromWindows1252(uchar byte);

}  // namespace kadrona::platform
