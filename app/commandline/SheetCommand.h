#pragma once

#include <QTextStream>

#include "app/commandline/CommandSetup.h"
#include "app/commandline/SheetRequest.h"
#include "core/Data.h"

namespace kadrona::app {

/// Makes the requested sheets without a window, through the same operations as the window. One line
/// per photo goes to `progress`, one per photo that could not be done (and why) to `errors`; the
/// others are still done. Throws UsageError when the request cannot be met for any photo.
int MakeSheets(const SheetRequest& request, core::TData& data, QTextStream& progress,
               QTextStream& errors);

/// Reads the arguments after "sheet" and makes the sheets on this machine's data.
int RunSheetCommand(const QStringList& arguments, QTextStream& progress, QTextStream& errors);

}  // namespace kadrona::app
