#pragma once

#include <QByteArrayView>
#include <QDateTime>
#include <QString>
#include <optional>

#include "platform/ReplacementFile.h"
#include "platform/SilenceWatch.h"

namespace kadrona::platform {

/// A file that appears under its name only once it is complete: it is written in the
/// same folder without a name, where the file system can, flushed to the disk and put under its
/// name by Commit. Without Commit nothing is left behind and an older file of that name stays as it
/// was. As long as it lives, a disk that does not answer is told of. A file that is marked
/// read-only is not replaced, not even for a user whom the system would let, and neither is a pipe
/// or a device.
///
/// The library weighed, QSaveFile, puts a file that was cut short over the good one where the disk
/// fills up, refuses names of more than 248 bytes and leaves its temporary file when it is killed.
class AtomicFile {
 public:
    /// Creates the new file. Throws FileError with the path and the system's reason.
    explicit AtomicFile(const QString& path, Links links = Links::All);

    /// Where to write; check nothing, Commit reports every failure.
    QIODevice& Device() { return file_; }

    /// When its content was made, where that was not now. To be said after the last byte.
    void SetModified(const QDateTime& time) const { file_.SetModified(time); }

    /// Flushes and replaces. Throws FileError with the path and the system's reason: the older file
    /// is still there then, but for UnflushedError.
    void Commit();

 private:
    QString path_;
    SilenceWatch watch_;
    ReplacementFile file_;
};

/// Writes a whole file through AtomicFile.
void WriteFileAtomically(const QString& path, QByteArrayView content, Links links = Links::All);

/// Reads a whole file; nothing only where there is none. Throws FileError when it cannot be looked
/// up or read, is no regular file or larger than `maximumBytes`.
std::optional<QByteArray> ReadFileIfThere(const QString& path, qint64 maximumBytes,
                                          Links links = Links::All);

/// The same, but a missing file is an error too.
QByteArray ReadWholeFile(const QString& path, qint64 maximumBytes, Links links = Links::All);

}  // namespace kadrona::platform
