#pragma once

#include <QByteArrayView>
#include <QString>

#include "platform/ReplacementFile.h"

namespace kadrona::platform {

/// A file that appears under its name only once it is complete: it is written in the
/// same folder without a name, where the file system can, flushed to the disk and put under its
/// name by Commit. Without Commit nothing is left behind and an older file of that name stays as it
/// was. A file that is marked read-only is not replaced, not even for a user whom the system would
/// let.
class AtomicFile {
 public:
    /// Creates the new file. Throws FileError with the path and the system's reason.
    explicit AtomicFile(const QString& path);

    /// Where to write; check nothing, Commit reports every failure.
    QIODevice& Device() { return file_; }

    /// Flushes and replaces. Throws FileError with the path and the system's reason.
    void Commit();

 private:
    QString path_;
    ReplacementFile file_;
};

/// Writes a whole file through AtomicFile.
void WriteFileAtomically(const QString& path, QByteArrayView content);

/// Reads a whole file. Throws FileError when it cannot be read or is larger than `maximumBytes`.
QByteArray ReadWholeFile(const QString& path, qint64 maximumBytes);

}  // namespace kadrona::platform
