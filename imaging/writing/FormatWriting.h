#pragma once

#include <QIODevice>
#include <QString>

#include "imaging/metadata/WrittenMetadata.h"
#include "imaging/pixels/Pixels.h"
#include "imaging/pixels/Resolution.h"

/// What the writers of the formats share, each a function in a header of its own. They write rows
/// as they come, so that a sheet takes the memory of a few rows; an alpha channel is laid over
/// white; the picture is marked as sRGB and carries the metadata where the format can. An unknown
/// resolution is left out of the file.
///
/// `device` is open for writing, random access and empty. `pixels` is not empty. What fails throws
/// platform::Error with the bare reason, without the file's name.
namespace kadrona::imaging {

using FormatWriter = void(QIODevice& device, const Pixels& pixels, DotsPerInch resolution,
                          const WrittenMetadata& metadata);

/// Where a library of a format writes to, and why it failed.
struct CodecTarget {
    QIODevice& device;
    QString reason = {};
    bool outOfMemory = false;

    /// False where the system refuses, which becomes the reason.
    bool Write(const void* bytes, qint64 count);
    /// The first reason stays: what follows it follows from it.
    void KeepReason(const QString& failure);
    /// The same with a message of the library itself, in English. One that says that memory is
    /// short is no reason.
    void KeepMessage(const QString& library, const QString& message);
    /// Throws the reason as platform::Error, or std::bad_alloc where memory was short.
    [[noreturn]] void Fail() const;
};

/// Appends to a file. Throws platform::Error with the system's reason.
void WriteBytes(QIODevice& device, const void* bytes, qint64 count);

/// Why the last write failed, as a German sentence.
QString FailureOf(const QIODevice& device);

/// The nearest whole number of dots per metre. It is at most 0.013 dots per inch off, so that a
/// reader that rounds gets every resolution back.
int DotsPerMetre(DotsPerInch resolution);

/// The ICC profile of sRGB.
QByteArray SrgbProfile();

}  // namespace kadrona::imaging
