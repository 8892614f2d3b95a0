#pragma once

#include <QTextStream>

#include "app/commandline/CommandSetup.h"
#include "app/commandline/SheetRequest.h"
#include "core/Data.h"

namespace kadrona::app {

/// Makes a file for an online application of each photo, without a window. One line per photo goes
/// to `progress`, one per photo that could not be done (and why) to `errors`; the others are still
/// done. Throws UsageError when the request cannot be met for any photo.
int MakeUploadFiles(const PhotoRequest& request, core::TData& data, QTextStream& progress,
                    QTextStream& errors);

/// Reads the arguments after "photo" and makes the files on this machine's data.
int RunPhotoCommand(const QStringList& arguments, QTextStream& progress, QTextStream& errors);

}  // namespace kadrona::app
