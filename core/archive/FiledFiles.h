#pragma once

#include <QDateTime>
#include <QRect>
#include <QSize>
#include <QString>
#include <optional>

#include "imaging/pixels/Pixels.h"

/// What is known of the files of a record.
namespace kadrona::core {

/// Size of a file, and its SHA-256 in hexadecimal digits.
struct FileDigest {
    qint64 bytes = 0;
    QString sha256;
    bool operator==(const FileDigest&) const = default;
};

/// The original that is kept beside a record's photo, a row of "ImgOriginal".
struct OriginalRecord {
    QString folder;  ///< below the archive's, with backslashes: "Originale\2026\03"
    QString name;
    QSize photo;      ///< of the photo when it was cut, pixels
    QRect rectangle;  ///< what was cut of it
    QString changes;  ///< what was done to it before, in words; empty where nothing was
    FileDigest file;
};

struct FiledFiles {
    FileDigest photo;
    std::optional<OriginalRecord> original;
};

/// The original of a photo that is to be filed.
struct OriginalToKeep {
    /// The file as it was opened; empty where there is none (any more).
    QString file;
    /// Its size and time when it was opened: another one under its name is not kept.
    qint64 bytes = 0;
    QDateTime modified;
    /// What is kept in its place then: the photo as it was before it was cut.
    imaging::Pixels photo;
    /// Of OriginalRecord.
    QSize size;
    QRect rectangle;
    QString changes;
};

}  // namespace kadrona::core
