#pragma once

#include <QTextStream>

#include "core/Data.h"

namespace kadrona::app {

/// What "kadrona archive" is asked to do.
struct ArchiveRequest {
    enum class Task { BackUp, Check, Rebuild, Export, Transfer };
    Task task = Task::Check;
    /// The archive's; the user's own where it is empty.
    QString folder;
    /// Of a backup or an export.
    QString output;
    /// What the exported photos are found by, as in the archive's window.
    QString search;
};

/// Reads the arguments that follow "archive". Throws UsageError.
ArchiveRequest ParseArchiveRequest(const QStringList& arguments);

/// Looks after the archive without a window. What was done goes to `output`, what could not be done
/// to `errors`. Throws platform::Error where nothing can be done.
int KeepArchive(const ArchiveRequest& request, core::TData& data, QTextStream& output,
                QTextStream& errors);

/// Reads the arguments after "archive" and works on this machine's archive.
int RunArchiveCommand(const QStringList& arguments, QTextStream& output, QTextStream& errors);

}  // namespace kadrona::app
