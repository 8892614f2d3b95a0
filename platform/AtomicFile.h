#pragma once

#include <QByteArrayView>
#include <QSaveFile>
#include <QString>

namespace kadrona::platform {

/// A file that appears under its name only once it is complete: it is written to a temporary file
/// in the same folder, flushed to the disk and renamed by Commit. Without Commit nothing is left
/// behind and an older file of that name stays as it was. A file that is marked read-only is not
/// replaced, not even for a user whom the system would let.
class AtomicFile {
 public:
    /// Opens the temporary file. Throws FileError with the path and the system's reason.
    explicit AtomicFile(const QString& path);

    /// Where to write; check nothing, Commit reports every failure.
    QIODevice& Device() { return file_; }

    /// Flushes and renames. Throws FileError with the path and the system's reason.
    void Commit();

 private:
    /// QSaveFile lets a write that the system cut short pass as a success.
    class CompleteSaveFile : public QSaveFile {
     public:
        using QSaveFile::QSaveFile;

     protected:
        qint64 writeData(const char* data, qint64 size) override;
    };

    CompleteSaveFile file_;
};

/// Writes a whole file through AtomicFile.
void WriteFileAtomically(const QString& path, QByteArrayView content);

/// Reads a whole file. Throws FileError when it cannot be read or is larger than `maximumBytes`.
QByteArray ReadWholeFile(const QString& path, qint64 maximumBytes);

}  // namespace kadrona::platform
