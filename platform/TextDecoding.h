#pragma once

#include <QByteArrayView>
#include <QString>

namespace kadrona::platform {

/// Text of a file that people edit: UTF-8 (a byte order mark is dropped); bytes that are not valid
/// UTF-8 are taken one by one as Windows-1252. NUL bytes are dropped. Never fails.
QString DecodeText(QByteArrayView bytes);

}  // namespace kadrona::platform
