#pragma once

#include <QDateTime>
#include <QString>
#include <functional>

namespace kadrona::platform {

/// Calls `isTaken` with one path after the other until it returns false: `folder`, the first three
/// characters of `prefix`, one to four hexadecimal digits, ".tmp". False when all are taken.
bool FindUniqueName(const QString& folder, const QString& prefix,
                    const std::function<bool(const QString& path)>& isTaken);

/// A new empty file, open for writing. The caller closes the handle.
struct UniqueFile {
    int handle = -1;  // -1 where none could be made
    QString path;
    int error = 0;  // the system's code
};

/// Creates an empty file where nothing stands under that name, with the permissions of FileModes.h,
/// and opens it for writing. Returns the handle, which the caller closes; -1 and errno where it
/// failed, EEXIST where the name is taken.
int CreateNewFile(const QString& path);

/// Creates a file in `folder` under a name of this form. Created exclusively, so two callers (also
/// of two processes) never get the same name.
UniqueFile OpenUniqueFile(const QString& folder, const QString& prefix);

/// The same, but returns the bare name of the closed file. Throws FileError.
QString CreateUniqueFile(const QString& folder, const QString& prefix);

/// Removes the files of `folder` that have a name of this form and were last written to before
/// `time`. What cannot be removed stays.
void RemoveUniqueFiles(const QString& folder, const QString& prefix, const QDateTime& time);

}  // namespace kadrona::platform
