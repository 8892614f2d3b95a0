#pragma once

#include <QByteArrayView>
#include <QString>

namespace kadrona::core {

/// Text of bytes in Windows-1252, the code page of the names in template files. The five bytes that
/// the code page leaves open become the control characters of the same number.
QString FromWindows1252(QByteArrayView bytes);

/// The Windows-1252 bytes of a text, one per UTF-16 unit; "?" for what the code page lacks.
QByteArray ToWindows1252(QStringView text);

}  // namespace kadrona::core
