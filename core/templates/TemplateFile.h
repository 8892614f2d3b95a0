#pragma once

#include <QByteArrayView>
#include <QString>
#include <vector>

#include "platform/Error.h"

namespace kadrona::core {

/// One element of a template drawing, as its file holds it.
struct TMask {
    qint32 reserved = 0;    ///< read and kept, not used for drawing
    qint32 colour = 0;      ///< 0x00BBGGRR, for the outline and the fill
    qint32 brushStyle = 0;  ///< 0 solid, 1 clear, 2 horizontal, 3 vertical, 4 forward diagonal,
                            ///< 5 backward diagonal, 6 cross, 7 diagonal cross
    qint32 penWidth = 0;    ///< outline width in pixels; negative leaves the width unchanged
    qint32 right = 0;
    qint32 left = 0;
    qint32 bottom = 0;
    qint32 top = 0;
    quint8 shape = 0;  ///< 0 rectangle, 1 ellipse; any other draws nothing
    QString name;      ///< up to 25 characters of Windows-1252

    static constexpr quint8 Rectangle = 0;
    static constexpr quint8 Ellipse = 1;
};

/// A template file is shorter than it promises or promises what cannot be.
class TemplateFileError : public platform::FileError {
    using FileError::FileError;
};

/// Bytes that one element takes in the file; the file starts with the 4-byte count.
inline constexpr int TemplateElementBytes = 59;

/// Reads a template drawing (little-endian; the layout stands in docs/file-formats.md). Bytes after
/// the last element are ignored; a negative count throws. Throws TemplateFileError.
std::vector<TMask> ParseTemplate(QByteArrayView bytes);

/// The bytes of a template file; names are cut to 25 characters.
QByteArray SerializeTemplate(const std::vector<TMask>& elements);

}  // namespace kadrona::core
