#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <optional>

#include "printing/PrinterLayer.h"

namespace kadrona::printing {

/// A printer settings file: a header of 208 bytes, little-endian, and the device mode block.
///
///       0   66   device name, 33 UTF-16 units, ended by a zero and filled with zeros
///      66   66   driver name, likewise
///     132   66   port name, likewise
///     198    2   padding
///     200    8   length of the device mode block, signed
///     208        device mode block
///
/// A name keeps at most 32 units and is never cut within a character.
QByteArray PrinterSettingsBytes(const PrinterChoice& choice);

/// The longest name that a printer settings file keeps whole, in UTF-16 units.
inline constexpr qsizetype LongestStoredName = 32;

/// The part of a name that the file keeps.
QString StoredName(const QString& name);

/// Reads such a file. A name that is not ended by a zero is read to the end of its field, and bytes
/// after the device mode block are left alone. Nothing where the bytes end before the header or the
/// block does, or the length is negative.
std::optional<PrinterChoice> ReadPrinterSettings(QByteArrayView bytes);

}  // namespace kadrona::printing
